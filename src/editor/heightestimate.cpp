#include "editor/heightestimate.h"

#include "editor/attachmentobject.h"
#include "richtext/textproperties.h"

#include <QFontMetricsF>
#include <QMarginsF>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace quorvane {

namespace {

constexpr double hopeless = 4 * tallestDocument; // nothing is counted any further
constexpr int deepestNesting = 40;
constexpr double largestMeasuredFont = 1000; // pixels; above it only the size is looked at
constexpr size_t mostMeasuredFonts = 256;
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

const ScriptExtent &extentOf(char16_t unit)
{
    const auto *next =
        std::upper_bound(scriptExtents.begin(), scriptExtents.end(), unit,
                         [](char16_t value, const ScriptExtent &row) { return value < row.first; });
    return *std::prev(next);
}

bool isBreakingSpace(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
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

/// The width that a table's cell has to itself: its share, or less where columns are fixed.
double cellWidth(const QTextTableCell &cell, const QTextTableFormat &format, double share)
{
    const QList<QTextLength> columns = format.columnWidthConstraints();
    double width = 0;
    for (int i = cell.column(); i < cell.column() + cell.columnSpan(); ++i) {
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

} // namespace

struct HeightEstimate::Measure
{
    double em = 0;
    double height = 0;
    double extra = 0; // letter spacing
    std::optional<QFontMetricsF> metrics;
    std::vector<float> widths; // 0 while not measured

    double width(char16_t unit)
    {
        if (unit >= firstUnmeasured) {
            return extentOf(unit).width * em + extra;
        }
        if (!metrics) {
            return 1.2 * em + extra;
        }
        float &width = widths[unit];
        if (width <= 0) {
            width = std::max(0.01F,
                             static_cast<float>(metrics->horizontalAdvance(QString(QChar(unit)))));
        }
        return static_cast<double>(width) + extra;
    }
};

/// Fills lines greedily, as the layout does.
struct HeightEstimate::Lines
{
    double width = 0;
    double tab = 0;
    double count = 1;
    double height = 0; // of the tallest line: each counts as much
    double used = 0;
    double word = 0;

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

    void add(double advance)
    {
        word += advance;
        if (word > width) {
            breakWord(advance);
        }
    }

    /// A word longer than a line is broken anywhere, here before its last letter.
    void breakWord(double advance)
    {
        count += (used > 0 ? 1 : 0) + 1;
        used = 0;
        word = advance;
    }
};

HeightEstimate::HeightEstimate(double width, const QPaintDevice *device)
    : m_width(width)
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

double HeightEstimate::of(const QTextDocument &document)
{
    m_document = &document;
    m_looks.clear();
    m_paragraphs.clear();
    m_onPages = 0;
    const double margins = 2 * document.documentMargin();
    const double height = margins + ofFrame(*document.rootFrame(), m_width - margins, 0);
    return height > tallestDocument ? height + m_onPages : height;
}

double HeightEstimate::ofBlocks(const QTextDocument &document, int from, int to)
{
    m_document = &document;
    m_looks.clear();
    m_paragraphs.clear();
    const double width = m_width - 2 * document.documentMargin();
    double height = 0;
    for (QTextBlock block = document.findBlock(from);
         block.isValid() && block.position() <= to && height < hopeless; block = block.next()) {
        height += ofBlock(block, width);
    }
    return height;
}

double HeightEstimate::ofFrame(const QTextFrame &frame, double width, int depth)
{
    if (depth > deepestNesting) {
        return hopeless;
    }
    if (const auto *table = qobject_cast<const QTextTable *>(&frame)) {
        return ofTable(*table, width, depth);
    }
    const QTextFrameFormat format = frame.frameFormat();
    const double inner = depth == 0 ? width
                                    : width - 2 * (format.border() + format.padding())
            - format.leftMargin() - format.rightMargin();
    double height = depth == 0 ? 0 : surroundings(format);
    for (auto part = frame.begin(); !part.atEnd() && height < hopeless; ++part) {
        const QTextFrame *child = part.currentFrame();
        height += child ? ofFrame(*child, inner, depth + 1) : ofBlock(part.currentBlock(), inner);
    }
    return height;
}

// A column may be narrower than its share, but then its neighbours, whose heights are added here
// and not laid side by side, are wider.
double HeightEstimate::ofTable(const QTextTable &table, double width, int depth)
{
    const QTextTableFormat format = table.format();
    const double around = 2 * (format.cellPadding() + format.border()) + format.cellSpacing();
    const double share = width / table.columns();
    double headers = 0;
    double height = surroundings(format);
    for (int row = 0; row < table.rows(); ++row) {
        headers = row > 0 && row <= format.headerRowCount() ? height : headers;
        height += around;
        for (int column = 0; column < table.columns() && height < hopeless; ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            if (cell.row() != row || cell.column() != column) {
                continue;
            }
            const QMarginsF own = aroundCell(cell.format().toTableCellFormat());
            const double inner = cellWidth(cell, format, share) - around - own.left() - own.right();
            height += own.top() + own.bottom();
            for (auto part = cell.begin(); !part.atEnd() && height < hopeless; ++part) {
                const QTextFrame *child = part.currentFrame();
                height +=
                    child ? ofFrame(*child, inner, depth + 1) : ofBlock(part.currentBlock(), inner);
            }
        }
    }
    m_onPages += headers * table.rows(); // They may stand on each page again.
    return height;
}

double HeightEstimate::ofBlock(const QTextBlock &block, double width)
{
    const Paragraph &paragraph = paragraphOf(block);
    Lines lines;
    lines.width = std::max(1.0, width - paragraph.aside);
    lines.tab = paragraph.tab;
    lines.height = lookOf(block, block.position(), block.length()).measure->height;
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextFragment fragment = part.fragment();
        addText(lines, fragment.text(), lookOf(fragment, fragment.position(), fragment.length()));
    }
    lines.endWord();
    m_onPages += paragraph.onPages;
    return lines.count * std::ceil(spacedLine(paragraph.format, lines.height)) + paragraph.margins;
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
    const float *widths = measure.metrics ? measure.widths.data() : nullptr;
    double word = lines.word; // kept at hand: nearly all of a text are letters of ASCII
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (widths && unit > u' ' && unit <= u'~' && widths[unit] > 0) {
            const double advance = static_cast<double>(widths[unit]) + measure.extra;
            word += advance;
            if (word > lines.width) {
                lines.breakWord(advance);
                word = lines.word;
            }
            continue;
        }
        lines.word = word;
        if (unit == QChar::ObjectReplacementCharacter
            && format.objectType() == attachmentObjectType) {
            const QSizeF size = largestAttachmentSize(format, m_dotsPerInch);
            lines.endWord();
            lines.add(std::min(size.width(), lines.width));
            height = std::max(height, size.height() + measure.height); // it stands on the line
        } else if (unit == QChar::ObjectReplacementCharacter) {
            addObjects(lines, 1, format);
        } else if (unit == QChar::LineSeparator) {
            lines.endWord();
            lines.breakLine();
        } else if (isBreakingSpace(unit)) {
            lines.endWord();
            lines.used += unit == u'\t' ? lines.tab : measure.width(unit);
        } else {
            lines.add(measure.width(unit));
            if (unit >= firstUnmeasured) {
                height = std::max(height, extentOf(unit).height * measure.em);
            }
        }
        word = lines.word;
    }
    lines.word = word;
    if (format.verticalAlignment() != QTextCharFormat::AlignNormal) {
        height *= 2;
    }
    height *= 1 + std::abs(format.baselineOffset()) / 100;
    lines.height = std::max(lines.height, height);
}

void HeightEstimate::addObjects(Lines &lines, qsizetype count, const QTextCharFormat &format) const
{
    const QTextImageFormat image = format.toImageFormat();
    const double unknown = format.isImageFormat() ? tallestImage : unknownObjectHeight;
    const double height = image.hasProperty(QTextFormat::ImageHeight) ? image.height() : unknown;
    const double width = image.hasProperty(QTextFormat::ImageWidth) ? image.width() : 0;
    lines.height = std::max(lines.height, height);
    for (qsizetype index = 0; index < count; ++index) {
        lines.endWord();
        lines.add(std::min(width, lines.width));
    }
}

/// Of a block or a fragment. Most of a text shares a few formats: each is looked at once.
template <typename Part>
const HeightEstimate::Look &HeightEstimate::lookOf(const Part &part, int position, int length)
{
    const bool isRestyled = position < m_restyledTo && position + length > m_restyledFrom;
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
    measure->widths.resize(firstUnmeasured);
    return measure;
}

} // namespace quorvane
