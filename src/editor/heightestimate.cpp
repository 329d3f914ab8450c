#include "editor/heightestimate.h"

#include "editor/attachmentobject.h"
#include "richtext/textproperties.h"

#include <QFontMetricsF>
#include <QMarginsF>
#include <QRawFont>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace quorvane {

namespace {

constexpr double hopeless = 4 * tallestDocument; // nothing is counted any further
constexpr int deepestNesting = 40;
constexpr double largestMeasuredFont = 1000; // pixels; above it only the size is looked at
constexpr size_t mostMeasuredFonts = 256;
constexpr double widestOfUnmeasuredFonts = 1.2; // ems
constexpr double unknownObjectHeight = 128; // an icon with its name

// Widths of letters are added up in whole parts of a pixel, which is several times as fast.
constexpr int partsOfPixel = 64;
constexpr double widestLine = 1 << 17; // pixels: many letters as wide have a sum all the same

int partsOf(double width)
{
    return int(std::ceil(std::clamp(width, 0.0, widestLine) * partsOfPixel));
}

/// Extents of the scripts that are drawn with fonts other than the one asked for, in ems.
struct ScriptExtent
{
    char16_t first;
    double width;
    double height;
};

// In ascending order; a row holds up to the next one. The first row is measured instead.
constexpr std::array scriptExtents {
    ScriptExtent {0x0000, 0, 0}, // Latin, Greek, Cyrillic
    ScriptExtent {0x0530, 2.0, 2.5},
    ScriptExtent {0x1e00, 1.2, 1.6}, // Latin and Greek with more accents
    ScriptExtent {0x2000, 1.2, 1.6}, // punctuation, signs, arrows
    ScriptExtent {0x2e80, 1.1, 1.8}, // Han, Kana, Hangul
    ScriptExtent {0xa000, 2.0, 2.5},
    ScriptExtent {0xac00, 1.1, 1.8}, // Hangul syllables
    ScriptExtent {0xd7b0, 2.0, 2.5}, // surrogates among them: each counts
    ScriptExtent {0xf900, 1.1, 1.8},
    ScriptExtent {0xfb00, 12.0, 3.0}, // whole phrases in one character
    ScriptExtent {0xfe10, 2.0, 2.5},
};
constexpr char16_t firstUnmeasured = scriptExtents[1].first;
constexpr char16_t firstOfPunctuation = scriptExtents[2].first; // and signs: most fonts have them
constexpr char16_t endOfPunctuation = scriptExtents[4].first;

const ScriptExtent &extentOf(char16_t unit)
{
    const auto *next =
        std::upper_bound(scriptExtents.begin(), scriptExtents.end(), unit,
                         [](char16_t value, const ScriptExtent &row) { return value < row.first; });
    return *std::prev(next);
}

double fixedLength(const QTextLength &length)
{
    return length.type() == QTextLength::FixedLength ? length.rawValue() : 0;
}

double surroundings(const QTextFrameFormat &format)
{
    return 2 * (format.border() + format.padding()) + format.topMargin() + format.bottomMargin()
        + std::max(0.0, fixedLength(format.height()));
}

/// What a cell of its own format has around its text.
QMarginsF aroundCell(const QTextTableCellFormat &format)
{
    const auto side = [](double padding, double border) {
        return std::max(0.0, padding + border);
    };
    return {side(format.leftPadding(), format.leftBorder()),
            side(format.topPadding(), format.topBorder()),
            side(format.rightPadding(), format.rightBorder()),
            side(format.bottomPadding(), format.bottomBorder())};
}

/// The width that columns of a table have together: their share, or less where they are fixed.
double columnsWidth(const QList<QTextLength> &columns, int first, int count, double share)
{
    double width = 0;
    for (int i = first; i < first + count; ++i) {
        const double fixed = i < columns.size() ? fixedLength(columns.at(i)) : 0;
        width += fixed > 0 ? std::min(fixed, share) : share;
    }
    return width;
}

double widestTab(const QTextBlockFormat &format, double distance)
{
    double widest = distance;
    double before = 0;
    for (const QTextOption::Tab &tab : format.tabPositions()) {
        widest = std::max(widest, tab.position - before);
        before = tab.position;
    }
    return widest;
}

double spacedLine(const QTextBlockFormat &format, double height)
{
    switch (format.lineHeightType()) {
    case QTextBlockFormat::ProportionalHeight:
        return height * std::max(100.0, format.lineHeight()) / 100;
    case QTextBlockFormat::FixedHeight:
    case QTextBlockFormat::MinimumHeight:
        return std::max(height, format.lineHeight());
    case QTextBlockFormat::LineDistanceHeight:
        return height + std::max(0.0, format.lineHeight());
    default:
        return height;
    }
}

/// How many times as tall a line becomes where letters or objects stand at another height in it.
double standingOf(const QTextCharFormat &format)
{
    const double offset = 1 + std::abs(format.baselineOffset()) / 100;
    switch (format.verticalAlignment()) {
    case QTextCharFormat::AlignNormal:
        return offset;
    case QTextCharFormat::AlignSuperScript: // smaller, and moved by half a line or less
    case QTextCharFormat::AlignSubScript:
        return 1.5 * offset;
    default:
        return 2 * offset;
    }
}

} // namespace

struct HeightEstimate::Measure
{
    double em = 0;
    double height = 0;
    double extra = 0; // letter spacing
    QRawFont glyphs;
    std::optional<QFontMetricsF> metrics;
    std::vector<int> widths; // in parts of a pixel, with the letter spacing; 0 while not measured

    bool isMeasurable(char16_t unit) const
    {
        return metrics
            && (unit < firstUnmeasured
                || (unit >= firstOfPunctuation && unit < endOfPunctuation
                    && glyphs.supportsCharacter(QChar(unit))));
    }

    struct Extent
    {
        int width; // in parts of a pixel
        double height;
    };

    /// Of a letter that was not met before.
    Extent measure(char16_t unit)
    {
        if (!isMeasurable(unit)) {
            const bool isOfAnotherFont = unit >= firstUnmeasured;
            const ScriptExtent extent =
                isOfAnotherFont ? extentOf(unit) : ScriptExtent {0, widestOfUnmeasuredFonts, 0};
            return {partsOf(extent.width * em + extra), std::max(height, extent.height * em)};
        }
        if (unit >= widths.size()) {
            widths.resize(unit < firstUnmeasured ? firstUnmeasured : endOfPunctuation);
        }
        const double advance = metrics->horizontalAdvance(QString(QChar(unit))) + extra;
        widths[unit] = std::max(1, partsOf(advance));
        return {widths[unit], height};
    }
};

/// Fills lines greedily, as the layout does. All widths are in parts of a pixel.
struct HeightEstimate::Lines
{
    struct Fill
    {
        explicit Fill(double pixels)
            : width(int(std::clamp(pixels, 1.0, widestLine) * partsOfPixel))
        { }

        int width;
        int count = 1;
        int used = 0;
        int word = 0;

        int left() const { return width - used - word; }

        void add(int advance)
        {
            word += advance;
            if (word > width) { // A word longer than a line is broken anywhere.
                count += (used > 0 ? 1 : 0) + 1;
                used = 0;
                word = advance;
            }
        }

        void endWord()
        {
            if (used + word > width) {
                breakLine();
            }
            used += word;
            word = 0;
        }

        void breakLine()
        {
            count += 1;
            used = 0;
        }
    };

    Fill wide;
    Fill narrow;
    int tab;
    double height; // of the tallest line, in pixels: each counts as much
    int run = 0; // letters that neither has been told of
    int room = 0; // for such letters, until one of the two breaks the word

    void addLetter(int advance)
    {
        if (run + advance <= room) {
            run += advance;
            return;
        }
        for (Fill *fill : {&wide, &narrow}) {
            fill->word += run;
            fill->add(advance);
        }
        run = 0;
        room = std::min(wide.width - wide.word, narrow.width - narrow.word);
    }

    void endWord()
    {
        for (Fill *fill : {&wide, &narrow}) {
            fill->word += run;
            fill->endWord();
        }
        run = 0;
        room = std::min(wide.width, narrow.width);
    }

    void addSpace(int width)
    {
        endWord();
        for (Fill *fill : {&wide, &narrow}) {
            fill->used += width;
        }
    }

    /// Adds letters and blanks that end on the line they begin on, as most do, whatever words they
    /// are of. \return false, with nothing added, where they do not, or one was not met before.
    bool addOnLine(QStringView letters, std::span<const int> widths)
    {
        int sum = 0;
        bool areKnown = true;
        for (const QChar letter : letters) {
            const char16_t unit = letter.unicode();
            const int width = unit < widths.size() ? widths[unit] : 0;
            areKnown = areKnown && width > 0;
            sum += width;
        }
        if (!areKnown || wide.left() < run + sum || narrow.left() < run + sum) {
            return false;
        }
        int begun = 0; // of the word that goes on behind them
        qsizetype at = letters.size();
        for (; at > 0 && letters[at - 1] != u' '; --at) {
            begun += widths[letters[at - 1].unicode()];
        }
        if (at == 0) {
            run += sum;
            return true;
        }
        for (Fill *fill : {&wide, &narrow}) {
            fill->used += fill->word + run + sum - begun;
            fill->word = 0;
        }
        run = begun;
        room = std::min(wide.width, narrow.width);
        return true;
    }

    void addObject(double width)
    {
        endWord();
        for (Fill *fill : {&wide, &narrow}) {
            fill->add(std::min(partsOf(width), fill->width));
        }
        endWord();
    }

    void breakLine()
    {
        endWord();
        wide.breakLine();
        narrow.breakLine();
    }
};

HeightEstimate::HeightEstimate(double width, double narrow, const QPaintDevice *device)
    : m_widths {width, narrow}
    , m_device(device)
    , m_dotsPerInch(device ? QFontMetricsF(QFont(), device).fontDpi()
                           : QFontMetricsF(QFont()).fontDpi())
{ }

HeightEstimate::~HeightEstimate() = default;

void HeightEstimate::restyle(int from, int to, const QTextCharFormat &format)
{
    m_restyledFrom = from;
    m_restyledTo = to;
    m_restyling = format;
}

HeightEstimate::Heights HeightEstimate::of(const QTextDocument &document)
{
    m_document = &document;
    m_looks.clear();
    m_paragraphs.clear();
    m_onPages = {};
    const double margins = 2 * document.documentMargin();
    Heights height = ofFrame(*document.rootFrame(), m_widths.less(margins), 0);
    height += {margins, margins};
    height += {height.wide > tallestDocument ? m_onPages.wide : 0,
               height.narrow > tallestDocument ? m_onPages.narrow : 0};
    return height;
}

HeightEstimate::Heights HeightEstimate::ofBlocks(const QTextDocument &document, int from, int to)
{
    m_document = &document;
    m_looks.clear();
    m_paragraphs.clear();
    const Widths widths = m_widths.less(2 * document.documentMargin());
    Heights height;
    for (QTextBlock block = document.findBlock(from);
         block.isValid() && block.position() <= to && height.wide < hopeless;
         block = block.next()) {
        height += ofBlock(block, widths);
    }
    return height;
}

HeightEstimate::Heights HeightEstimate::ofFrame(const QTextFrame &frame, Widths widths, int depth)
{
    if (depth > deepestNesting) {
        return {hopeless, hopeless};
    }
    if (const auto *table = qobject_cast<const QTextTable *>(&frame)) {
        return ofTable(*table, widths, depth);
    }
    Heights height;
    Widths inner = widths;
    if (depth > 0) {
        const QTextFrameFormat format = frame.frameFormat();
        inner = widths.less(2 * (format.border() + format.padding()) + format.leftMargin()
                            + format.rightMargin());
        height += {surroundings(format), surroundings(format)};
    }
    QTextBlock block = m_document->findBlock(frame.firstPosition());
    const auto addUpTo = [&](const QTextBlock &end) {
        for (; block.isValid() && block != end && height.wide < hopeless; block = block.next()) {
            height += ofBlock(block, inner);
        }
    };
    for (const QTextFrame *child : frame.childFrames()) { // in the text's order
        addUpTo(m_document->findBlock(child->firstPosition()));
        height += ofFrame(*child, inner, depth + 1);
        block = m_document->findBlock(child->lastPosition() + 1);
    }
    addUpTo(m_document->findBlock(frame.lastPosition()).next());
    return height;
}

// A column may be narrower than its share, but then its neighbours, whose heights are added here
// and not laid side by side, are wider.
HeightEstimate::Heights HeightEstimate::ofTable(const QTextTable &table, Widths widths, int depth)
{
    const QTextTableFormat format = table.format();
    const QList<QTextLength> columns = format.columnWidthConstraints();
    const double around = 2 * (format.cellPadding() + format.border()) + format.cellSpacing();
    const Widths share {widths.wide / table.columns(), widths.narrow / table.columns()};
    Heights headers;
    Heights height {surroundings(format), surroundings(format)};
    for (int row = 0; row < table.rows(); ++row) {
        headers = row > 0 && row <= format.headerRowCount() ? height : headers;
        height += {around, around};
        for (int column = 0; column < table.columns() && height.wide < hopeless; ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            if ((column > 0 && table.cellAt(row, column - 1) == cell)
                || (row > 0 && table.cellAt(row - 1, column) == cell)) {
                continue; // it spans this place, too
            }
            const QTextTableCellFormat cellFormat = cell.format().toTableCellFormat();
            const QMarginsF own = aroundCell(cellFormat);
            const int span = cellFormat.tableCellColumnSpan();
            const Widths inner = Widths {columnsWidth(columns, column, span, share.wide),
                                         columnsWidth(columns, column, span, share.narrow)}
                                     .less(around + own.left() + own.right());
            height += {own.top() + own.bottom(), own.top() + own.bottom()};
            for (auto part = cell.begin(); !part.atEnd() && height.wide < hopeless; ++part) {
                const QTextFrame *child = part.currentFrame();
                height +=
                    child ? ofFrame(*child, inner, depth + 1) : ofBlock(part.currentBlock(), inner);
            }
        }
    }
    m_onPages += {headers.wide * table.rows(), headers.narrow * table.rows()}; // on each page again
    return height;
}

HeightEstimate::Heights HeightEstimate::ofBlock(const QTextBlock &block, Widths widths)
{
    const Paragraph &paragraph = paragraphOf(block);
    const Widths inner = widths.less(paragraph.aside);
    Lines lines {.wide = Lines::Fill(inner.wide),
                 .narrow = Lines::Fill(inner.narrow),
                 .tab = partsOf(paragraph.tab),
                 .height = block.length() > 1 ? 0 : lookOf(block).measure->height};
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        addText(lines, fragment.text(), lookOf(fragment));
    }
    lines.endWord();
    m_onPages += {paragraph.onPages, paragraph.onPages};
    const double line = std::ceil(spacedLine(paragraph.format, lines.height));
    return {lines.wide.count * line + paragraph.margins,
            lines.narrow.count * line + paragraph.margins};
}

const HeightEstimate::Paragraph &HeightEstimate::paragraphOf(const QTextBlock &block)
{
    const auto index = static_cast<size_t>(block.blockFormatIndex());
    if (index >= m_paragraphs.size()) {
        m_paragraphs.resize(index + 1);
    }
    std::optional<Paragraph> &paragraph = m_paragraphs[index];
    if (paragraph) {
        return *paragraph;
    }
    const QTextBlockFormat format = block.blockFormat();
    const QTextList *list = block.textList();
    const int indent = format.indent() + (list ? list->format().indent() : 0);
    const QTextFormat::PageBreakFlags breaks = format.pageBreakPolicy();
    const int pages = breaks.testFlag(QTextFormat::PageBreak_AlwaysBefore)
        + breaks.testFlag(QTextFormat::PageBreak_AlwaysAfter);
    paragraph = {format,
                 format.leftMargin() + format.rightMargin() + std::abs(format.textIndent())
                     + indent * m_document->indentWidth(),
                 widestTab(format, m_document->defaultTextOption().tabStopDistance()),
                 std::max(0.0, format.topMargin()) + std::max(0.0, format.bottomMargin()),
                 pages * pageHeight};
    return *paragraph;
}

void HeightEstimate::addText(Lines &lines, const QString &text, const Look &look)
{
    constexpr qsizetype stretch = 32; // a line has a few of them
    double height = look.measure->height;
    const QStringView all(text);
    for (qsizetype at = 0; at < all.size(); at += stretch) {
        const QStringView letters = all.mid(at, stretch);
        if (!lines.addOnLine(letters, look.measure->widths)) {
            height = std::max(height, addLetters(lines, letters, look));
        }
    }
    lines.height = std::max(lines.height, height * look.standing);
}

/// One by one. \return the height of the tallest.
double HeightEstimate::addLetters(Lines &lines, QStringView letters, const Look &look)
{
    Measure &measure = *look.measure;
    double height = 0;
    for (const QChar letter : letters) {
        const char16_t unit = letter.unicode();
        const int known = unit < measure.widths.size() ? measure.widths[unit] : 0;
        if (unit == u' ') {
            lines.addSpace(known > 0 ? known : measure.measure(unit).width);
        } else if (known > 0) {
            lines.addLetter(known);
        } else if (unit == QChar::ObjectReplacementCharacter) {
            const QSizeF size = objectSize(look.format, measure);
            lines.addObject(size.width());
            height = std::max(height, size.height());
        } else if (unit == QChar::LineSeparator) {
            lines.breakLine();
        } else if (unit == u'\t') {
            lines.addSpace(lines.tab);
        } else {
            const Measure::Extent extent = measure.measure(unit);
            lines.addLetter(extent.width);
            height = std::max(height, extent.height);
        }
    }
    return height;
}

QSizeF HeightEstimate::objectSize(const QTextCharFormat &format, const Measure &measure) const
{
    if (format.objectType() == attachmentObjectType) {
        const QSizeF size = largestAttachmentSize(format, m_dotsPerInch);
        return {size.width(), size.height() + measure.height}; // it stands on the line
    }
    const QTextImageFormat image = format.toImageFormat();
    const double unknown = format.isImageFormat() ? tallestImage : unknownObjectHeight;
    return {image.hasProperty(QTextFormat::ImageWidth) ? image.width() : 0,
            image.hasProperty(QTextFormat::ImageHeight) ? image.height() : unknown};
}

/// Of a block or a fragment. Most of a text shares a few formats: each is looked at once.
template <typename Part> const HeightEstimate::Look &HeightEstimate::lookOf(const Part &part)
{
    const bool isRestyled = m_restyledTo > m_restyledFrom && part.position() < m_restyledTo
        && part.position() + part.length() > m_restyledFrom;
    const auto index = static_cast<size_t>(part.charFormatIndex());
    if (index >= m_looks.size()) {
        m_looks.resize(index + 1);
    }
    Look &look = isRestyled ? m_restyled : m_looks[index];
    if (isRestyled || !look.measure) {
        look.format = part.charFormat();
        if (isRestyled) {
            look.format.merge(m_restyling);
        }
        look.measure = &measureOf(look.format);
        look.standing = standingOf(look.format);
    }
    return look;
}

HeightEstimate::Measure &HeightEstimate::measureOf(const QTextCharFormat &format)
{
    const QFont font = format.font().resolve(m_document->defaultFont());
    const size_t key =
        qHashMulti(0, font, font.pointSizeF()); // a font's own hash leaves its points out
    const auto known = m_measures.find(key);
    if (known != m_measures.end()) {
        return *known->second;
    }
    return *m_measures.emplace(key, newMeasure(font)).first->second;
}

std::unique_ptr<HeightEstimate::Measure> HeightEstimate::newMeasure(const QFont &font) const
{
    auto measure = std::make_unique<Measure>();
    measure->em = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * m_dotsPerInch / 72;
    measure->height = 2 * measure->em;
    if (font.letterSpacingType() == QFont::AbsoluteSpacing) {
        measure->extra = std::max(0.0, font.letterSpacing());
    }
    // Beyond these a text is hostile or absurd: its size alone decides.
    if (measure->em > largestMeasuredFont || m_measures.size() >= mostMeasuredFonts) {
        return measure;
    }
    const QFontMetricsF metrics = m_device ? QFontMetricsF(font, m_device) : QFontMetricsF(font);
    measure->height = std::ceil(metrics.ascent()) + std::ceil(metrics.descent())
        + std::ceil(std::max(0.0, metrics.leading()));
    measure->metrics = metrics;
    measure->glyphs = QRawFont::fromFont(font);
    return measure;
}

} // namespace quorvane
