#pragma once

#include <QSizeF>
#include <QTextBlockFormat>
#include <QTextCharFormat>

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

class QFont;
class QPaintDevice;
class QTextBlock;
class QTextDocument;
class QTextFrame;
class QTextTable;

namespace quorvane {

/// The tallest document that is laid out in one piece, in pixels. The toolkit's layout loops for
/// ever above 2^23 - 1; the distance between the two covers what an estimate may miss.
constexpr double tallestDocument = 8'000'000;

/// A taller one is laid out on pages of this height.
constexpr double pageHeight = tallestDocument / 2;

/// Images that do not say their height are shown no taller than this, in pixels.
constexpr double tallestImage = 4096;

/// Tells how tall a text becomes without laying it out: linear in its length, and rather too tall
/// than too low. It never touches the document's layout, so it may judge any document.
class HeightEstimate final
{
public:
    /// In pixels, for a text that is wrapped at one width and at a narrower one.
    struct Heights
    {
        double wide = 0;
        double narrow = 0;

        Heights &operator+=(const Heights &other)
        {
            wide += other.wide;
            narrow += other.narrow;
            return *this;
        }
    };

    /// \a width and \a narrow, which is not above it, are what the text is wrapped at, in pixels:
    /// one walk judges both. \a device gives the resolution, the screen's where it is null.
    HeightEstimate(double width, double narrow, const QPaintDevice *device = nullptr);

    explicit HeightEstimate(double width, const QPaintDevice *device = nullptr)
        : HeightEstimate(width, width, device)
    { }

    ~HeightEstimate();

    /// Judges the characters from \a from to \a to as if \a format had been merged into theirs.
    void restyle(int from, int to, const QTextCharFormat &format);

    /// Heights of the whole. It stops counting well above tallestDocument.
    Heights of(const QTextDocument &document);
    /// Heights of the blocks that the characters from \a from to \a to touch.
    Heights ofBlocks(const QTextDocument &document, int from, int to);

private:
    struct Measure; // of one font
    struct Lines; // of one block, while its text is added

    struct Widths
    {
        double wide;
        double narrow;

        Widths less(double aside) const { return {wide - aside, narrow - aside}; }
    };

    struct Look
    {
        QTextCharFormat format;
        Measure *measure = nullptr;
        double standing = 1; // how many times as tall it makes a line
    };

    /// What a paragraph has around its text, by its format alone.
    struct Paragraph
    {
        QTextBlockFormat format;
        double aside;
        double tab;
        double margins;
        double onPages;
    };

    const Paragraph &paragraphOf(const QTextBlock &block);
    Heights ofFrame(const QTextFrame &frame, Widths widths, int depth);
    Heights ofTable(const QTextTable &table, Widths widths, int depth);
    Heights ofBlock(const QTextBlock &block, Widths widths);
    void addText(Lines &lines, const QString &text, const Look &look);
    double addLetters(Lines &lines, QStringView letters, const Look &look);
    QSizeF objectSize(const QTextCharFormat &format, const Measure &measure) const;
    template <typename Part> const Look &lookOf(const Part &part);
    Measure &measureOf(const QTextCharFormat &format);
    std::unique_ptr<Measure> newMeasure(const QFont &font) const;

    Widths m_widths;
    const QPaintDevice *m_device;
    double m_dotsPerInch;
    const QTextDocument *m_document = nullptr;
    Heights m_onPages; // what page breaks and repeated rows add to a text on pages
    int m_restyledFrom = 0;
    int m_restyledTo = 0;
    QTextCharFormat m_restyling;
    std::unordered_map<size_t, std::unique_ptr<Measure>> m_measures;
    std::vector<Look> m_looks; // by the format's number in the document
    std::vector<std::optional<Paragraph>> m_paragraphs; // the same
    Look m_restyled;
};

} // namespace quorvane
