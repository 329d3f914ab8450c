#include "editor/adaptivecolours.h"

#include "editor/texteditor.h"

#include <QEvent>
#include <QTextTable>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr double readable = 4.5; // what WCAG 2.1 asks of text
constexpr float lightnessStep = 0.04F;

bool isDark(const QColor &colour)
{
    return contrastOf(Qt::white, colour) > contrastOf(Qt::black, colour);
}

double luminanceOf(const QColor &colour)
{
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

} // namespace

QColor paperOf(const QTextBlock &block, const QColor &page)
{
    if (block.blockFormat().hasProperty(QTextFormat::BackgroundBrush)) {
        return block.blockFormat().background().color();
    }
    const QTextCursor cursor(block);
    const QTextTable *table = cursor.currentTable();
    const QTextTableCell cell = table ? table->cellAt(cursor) : QTextTableCell();
    const bool isShaded = cell.isValid() && cell.format().hasProperty(QTextFormat::BackgroundBrush);
    return isShaded ? cell.format().background().color() : page;
}

double contrastOf(const QColor &ink, const QColor &paper)
{
    const double one = luminanceOf(ink);
    const double other = luminanceOf(paper);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QColor readableInk(const QColor &ink, const QColor &paper)
{
    QColor adapted = ink.toHsl();
    const float step = isDark(paper) ? lightnessStep : -lightnessStep;
    while (contrastOf(adapted, paper) < readable) {
        const float lightness = std::clamp(adapted.lightnessF() + step, 0.0F, 1.0F);
        adapted.setHslF(adapted.hslHueF(), adapted.hslSaturationF(), lightness, ink.alphaF());
        if (lightness <= 0 || lightness >= 1) {
            break;
        }
    }
    return adapted.toRgb();
}

AdaptiveColours::AdaptiveColours(TextEditor &editor, VisibleMarks &marks)
    : m_editor(editor)
    , m_marks(marks)
{
    marks.setSource(VisibleMarks::Layer::Colours,
                    [this](const QTextBlock &first, const QTextBlock &last, auto &added) {
                        if (!m_enabled || !isDark(m_editor.palette().color(QPalette::Base))) {
                            return;
                        }
                        for (QTextBlock block = first;
                             block.isValid() && block.position() <= last.position();
                             block = block.next()) {
                            markBlock(block, added);
                        }
                    });
    editor.installEventFilter(this);
}

void AdaptiveColours::setEnabled(bool enabled)
{
    m_enabled = enabled;
    m_marks.refresh();
}

bool AdaptiveColours::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        m_marks.refresh();
    }
    return QObject::eventFilter(watched, event);
}

void AdaptiveColours::markBlock(const QTextBlock &block, VisibleMarks::Marks &marks) const
{
    const QColor page = m_editor.palette().color(QPalette::Base);
    const QColor blockPaper = paperOf(block, page);
    for (auto part = block.begin(); !part.atEnd(); ++part) {
        const QTextCharFormat format = part.fragment().charFormat();
        const bool isInked = format.hasProperty(QTextFormat::ForegroundBrush);
        const bool isMarked = format.hasProperty(QTextFormat::BackgroundBrush);
        const QColor paper = isMarked ? format.background().color() : blockPaper;
        if (!isInked && paper == page) {
            continue; // the palette's own colours
        }
        const QColor ink =
            isInked ? format.foreground().color() : m_editor.palette().color(QPalette::Text);
        if (contrastOf(ink, paper) >= readable) {
            continue;
        }
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(block);
        mark.cursor.setPosition(part.fragment().position());
        mark.cursor.setPosition(part.fragment().position() + part.fragment().length(),
                                QTextCursor::KeepAnchor);
        // Without a paper of its own the toolkit leaves out a mark that touches another one.
        mark.format.setBackground(paper);
        // What the document says nothing of may well be the strongest colour there is.
        const QColor strongest = isDark(paper) ? Qt::white : Qt::black;
        mark.format.setForeground(isInked ? readableInk(ink, paper) : strongest);
        marks << mark;
    }
}

} // namespace quorvane
