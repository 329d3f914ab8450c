#include "richtext/rtfsurplus.h"

#include "richtext/rtftokenizer.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace quorvane {

namespace {

// Text that comes back in another place, what is behind a picture, text that is crossed out,
// formulas and the entries of an index or of a table of contents.
constexpr std::string_view surplus[] = {
    "annotation", "deleted",  "dptxbxtext", "footer",  "footerf", "footerl",
    "footerr",    "footnote", "header",     "headerf", "headerl", "headerr",
    "moMath",     "objdata",  "shptxt",     "tc",      "xe",
};

// Their words describe what might be used, not what is.
constexpr std::string_view catalogues[] = {"stylesheet", "listtable", "listoverridetable", "info"};

constexpr QByteArrayView hyperlink = "hyperlink";

template <std::size_t N> bool isOneOf(const RtfToken &token, const std::string_view (&words)[N])
{
    const std::string_view word(token.text.data(), std::size_t(token.text.size()));
    return std::find(std::begin(words), std::end(words), word) != std::end(words)
        && (!token.hasParameter || token.parameter != 0);
}

/// Goes through a text and finds whether it holds any.
class Search final
{
public:
    bool isFound(const RtfToken &token)
    {
        using Kind = RtfToken::Kind;
        switch (token.kind) {
        case Kind::GroupStart:
            ++m_depth;
            return false;
        case Kind::GroupEnd:
            return endGroup();
        case Kind::Word:
            return isFoundInWord(token);
        case Kind::Text:
            if (m_instructionDepth > 0 && m_instruction.size() < hyperlink.size()) {
                m_instruction += token.text.toByteArray().trimmed().left(hyperlink.size());
            }
            return false;
        default:
            return false;
        }
    }

private:
    bool endGroup()
    {
        --m_depth;
        m_catalogueDepth = m_depth < m_catalogueDepth ? 0 : m_catalogueDepth;
        if (m_depth >= m_instructionDepth) {
            return false;
        }
        m_instructionDepth = 0;
        const QByteArray instruction = m_instruction.toLower();
        return !instruction.isEmpty() && !instruction.startsWith(hyperlink);
    }

    bool isFoundInWord(const RtfToken &token)
    {
        if (m_catalogueDepth > 0) {
            return false;
        }
        if (isOneOf(token, catalogues)) {
            m_catalogueDepth = std::max<qsizetype>(m_depth, 1);
        } else if (token.text == QByteArrayView("fldinst")) {
            m_instructionDepth = std::max<qsizetype>(m_depth, 1);
            m_instruction.clear();
        }
        return isOneOf(token, surplus);
    }

    qsizetype m_depth = 0;
    qsizetype m_catalogueDepth = 0; ///< Of the catalogue's group; 0 outside.
    qsizetype m_instructionDepth = 0; ///< Of a field's instruction; 0 outside.
    QByteArray m_instruction; ///< Its first letters.
};

} // namespace

bool rtfHoldsSurplus(QByteArrayView rtf)
{
    RtfTokenizer tokenizer(rtf);
    Search search;
    for (RtfToken token = tokenizer.next(); token.kind != RtfToken::Kind::End;
         token = tokenizer.next()) {
        if (search.isFound(token)) {
            return true;
        }
    }
    return false;
}

} // namespace quorvane
