#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QString>

namespace quorvane {

class RtfTables;

/// How characters look, in RTF's own terms; the numbers point into the tables.
struct RtfCharacter
{
    int font = -1; ///< -1: none was named.
    int milliPoints = 0; ///< Size in thousandths of a point; 0: none was named.
    int colour = 0; ///< 0 is the automatic colour.
    bool bold = false;
    bool italic = false;
    bool underline = false;

    bool operator==(const RtfCharacter &) const = default;
};

inline size_t qHash(const RtfCharacter &c, size_t seed = 0)
{
    return qHashMulti(seed, c.font, c.milliPoints, c.colour, c.bold, c.italic, c.underline);
}

enum class RtfAlignment { Natural, Left, Centre, Right, Justify };

/// How a paragraph looks.
struct RtfParagraph
{
    RtfAlignment alignment = RtfAlignment::Natural;
    QByteArray words; ///< Control words that are carried along as they came.

    bool operator==(const RtfParagraph &) const = default;
};

/// A file that stands in the text like a character.
struct RtfAttachment
{
    QString name; ///< As in the folder beside the text.
    int width = 0; ///< Twips; 0: not told.
    int height = 0; ///< Twips; 0: not told.
    bool noOrient = false;
};

/// What a reader tells of a text, in reading order.
class RtfSink
{
public:
    virtual ~RtfSink() = default;

    /// \a tables outlive the reading and fill while it goes on.
    virtual void begin(const RtfTables &tables) = 0;
    /// The tables have changed: what was looked up in them may be stale.
    virtual void tablesChanged() = 0;
    /// Any UTF-16 units; CR, LF, CRLF and U+2029 in them end paragraphs like paragraphEnd().
    virtual void text(QStringView text, const RtfParagraph &paragraph,
                      const RtfCharacter &character) = 0;
    virtual void attachment(const RtfAttachment &attachment, const RtfCharacter &character) = 0;
    virtual void paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character) = 0;
    /// Ends the last paragraph, which has no end of its own, and the text.
    virtual void end(const RtfParagraph &paragraph, const RtfCharacter &character) = 0;
};

} // namespace quorvane
