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

/// What a line becomes taller by where letters or objects stand at another height in it.
double standingOf(QTextCharFormat::VerticalAlignment alignment)
{
    switch (alignment) {
    case QTextCharFormat::AlignNormal:
        return 1;
    case QTextCharFormat::AlignSuperScript: // smaller, and moved by half a line or less
    case QTextCharFormat::AlignSubScript:
        return 1.5;
    default:
        return 2;
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
    std::vector<float> widths; // with the letter spacing; 0 while not measured

    bool isMeasurable(char16_t unit) const
    {
        return metrics
            && (unit < firstUnmeasured
                || (unit >= firstOfPunctuation && unit < endOfPunctuation
                    && glyphs.supportsCharacter(QChar(unit))));
    }

    /// Of a letter that was not met before.
    QSizeF measure(char16_t unit)
    {
        if (!isMeasurable(unit)) {
            const bool isOfAnotherFont = unit >= firstUnmeasured;
            const ScriptExtent extent =
                isOfAnotherFont ? extentOf(unit) : ScriptExtent {0, widestOfUnmeasuredFonts, 0};
            return {extent.width * em + extra, std::max(height, extent.height * em)};
        }
        if (unit >= widths.size()) {
            widths.resize(unit < firstUnmeasured ? firstUnmeasured : endOfPunctuation);
        }
        const double advance = metrics->horizontalAdvance(QString(QChar(unit))) + extra;
        widths[unit] = std::max(0.01F, static_cast<float>(advance));
        return {advance, height};
    }
};

/// Fills lines greedily, as the layout does.
struct HeightEstimate::Lines
{
    struct Fill
    {
        double width;
        double count = 1;
        double used = 0;
        double word = 0;

        void add(double advance)
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
    double tab;
    double height; // of the tallest line: each counts as much
    double run = 0; // letters that neither has been told of
    double room = 0; // for such letters, until one of the two breaks the word

    /// Adds the run to both, the last of whose letters is \a advance wide.
    void addRun(double advance)
    {
        for (Fill *fill : {&wide, &narrow}) {
            fill->word += run - advance;
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

    void addSpace(double width)
    {
        endWord();
        wide.used += width;
        narrow.used += width;
    }

    void addObject(double width)
    {
        endWord();
        wide.add(std::min(width, wide.width));
        narrow.add(std::min(width, narrow.width));
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
            if (cell.row() != row || cell.column() != column) {
                continue;
            }
            const QMarginsF own = aroundCell(cell.format().toTableCellFormat());
            const int span = cell.columnSpan();
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
    Lines lines {.wide = {std::max(1.0, inner.wide)},
                 .narrow = {std::max(1.0, inner.narrow)},
                 .tab = paragraph.tab,
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
    Measure &measure = *look.measure;
    const QTextCharFormat &format = look.format;
    double height = measure.height;
    // Kept at hand: nearly all of a text are letters seen before.
    double run = lines.run;
    double room = lines.room;
    std::span<const float> widths = measure.widths;
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        const float known = unit < widths.size() ? widths[unit] : 0;
        if (known > 0 && unit != u' ') {
            run += static_cast<double>(known);
            if (run > room) {
                lines.run = std::exchange(run, 0);
                lines.addRun(static_cast<double>(known));
                room = lines.room;
            }
            continue;
        }
        lines.run = std::exchange(run, 0);
        if (unit == QChar::ObjectReplacementCharacter) {
            const QSizeF size = objectSize(format, measure);
            lines.addObject(size.width());
            height = std::max(height, size.height());
        } else if (unit == QChar::LineSeparator) {
            lines.breakLine();
        } else if (unit == u'\t') {
            lines.addSpace(lines.tab);
        } else if (unit == u' ') {
            lines.addSpace(known > 0 ? static_cast<double>(known) : measure.measure(unit).width());
        } else {
            const QSizeF size = measure.measure(unit);
            lines.run += size.width();
            lines.addRun(size.width());
            height = std::max(height, size.height());
        }
        room = lines.room;
        widths = measure.widths;
    }
    lines.run = run;
    height *= standingOf(format.verticalAlignment());
    height *= 1 + std::abs(format.baselineOffset()) / 100;
    lines.height = std::max(lines.height, height);
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
