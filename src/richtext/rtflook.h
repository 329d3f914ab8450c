#pragma once

#include <QByteArray>

#include <array>

class QTextCharFormat;

namespace quorvane {

class RtfWriterTables;

/// How characters look, as the words that say so; what is empty is as it is without a word.
class RtfLook final
{
public:
    RtfLook() = default;
    enum class Dialect {
        Platform, ///< Only what the platform itself writes.
        Common, ///< Says twice what others know by another word.
    };

    RtfLook(const QTextCharFormat &format, RtfWriterTables &tables, Dialect dialect);

    bool operator==(const RtfLook &) const = default;

    bool isEmpty() const { return *this == RtfLook(); }

    /// Appends the words that lead from this look to another one. \a isFirst: always says the
    /// colour.
    void appendChange(QByteArray &out, const RtfLook &to, bool isFirst) const;

private:
    enum Slot {
        Font,
        Italic,
        Bold,
        Size,
        Colour,
        Highlight,
        Spacing,
        Underline,
        UnderlineColour,
        Strike,
        Script,
        Baseline,
        Capitals,
        Carried,
        SlotCount
    };

    struct Ending
    {
        Slot slot;
        const char *words;
    };

    static const Ending endings[];

    void takeFont(const QTextCharFormat &format, RtfWriterTables &tables);
    void takeColours(const QTextCharFormat &format, RtfWriterTables &tables, bool looksAsLink,
                     Dialect dialect);
    void takeLines(const QTextCharFormat &format, RtfWriterTables &tables, bool looksAsLink);
    void takePlace(const QTextCharFormat &format);
    void takeSpacing(const QTextCharFormat &format);

    std::array<QByteArray, SlotCount> m_words;
};

} // namespace quorvane
