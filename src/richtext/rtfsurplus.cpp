#include "richtext/rtfsurplus.h"

#include "richtext/rtftokenizer.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

namespace quorvane {

namespace {

struct Surplus
{
    std::string_view word;
    int harmlessUpTo; ///< A number up to this one switches off; without a number counts as more.
};

constexpr int never = std::numeric_limits<int>::min();

constexpr Surplus surplus[] = {
    {"caps", 0},        {"cb", 1},           {"chcbpat", 0},     {"dn", 0},
    {"fldinst", never}, {"footnote", never}, {"header", never},  {"footer", never},
    {"highlight", 0},   {"ls", 0},           {"objdata", never}, {"outl", 0},
    {"pict", never},    {"scaps", 0},        {"shad", 0},        {"strike", 0},
    {"striked", 0},     {"strokewidth", 0},  {"sub", 0},         {"super", 0},
    {"trowd", never},   {"uldb", 0},         {"up", 0},          {"v", 0},
};

// Their words describe what might be used, not what is.
constexpr std::string_view catalogues[] = {"stylesheet", "listtable", "listoverridetable", "info"};

bool isSurplus(const RtfToken &token)
{
    const std::string_view word(token.text.data(), static_cast<std::size_t>(token.text.size()));
    const auto found = std::find_if(std::begin(surplus), std::end(surplus),
                                    [word](const Surplus &each) { return each.word == word; });
    return found != std::end(surplus)
        && (!token.hasParameter || token.parameter > found->harmlessUpTo);
}

bool isCatalogue(const RtfToken &token)
{
    const std::string_view word(token.text.data(), static_cast<std::size_t>(token.text.size()));
    return std::find(std::begin(catalogues), std::end(catalogues), word) != std::end(catalogues);
}

} // namespace

bool rtfHoldsSurplus(QByteArrayView rtf)
{
    using Kind = RtfToken::Kind;
    RtfTokenizer tokenizer(rtf);
    qsizetype depth = 0;
    qsizetype catalogueDepth = 0; // of the catalogue's group; 0 outside
    for (RtfToken token = tokenizer.next(); token.kind != Kind::End; token = tokenizer.next()) {
        if (token.kind == Kind::GroupStart) {
            ++depth;
        } else if (token.kind == Kind::GroupEnd) {
            --depth;
            catalogueDepth = depth < catalogueDepth ? 0 : catalogueDepth;
        } else if (token.kind != Kind::Word) {
            continue;
        } else if (token.text == QByteArrayView("bin") && token.hasParameter
                   && token.parameter > 0) {
            tokenizer.setPosition(
                std::min(rtf.size(), tokenizer.position() + qsizetype(token.parameter)));
        } else if (catalogueDepth == 0 && isCatalogue(token)) {
            catalogueDepth = std::max<qsizetype>(depth, 1);
        } else if (catalogueDepth == 0 && isSurplus(token)) {
            return true;
        }
    }
    return false;
}

} // namespace quorvane
