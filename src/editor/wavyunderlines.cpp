#include "editor/wavyunderlines.h"

#include "editor/texteditor.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPainterPath>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {
constexpr QSize waveSize(4, 3); // of one wave, in pixels
constexpr double lineWidth = 1.1;
constexpr double largestGap = 6;
} // namespace

WavyUnderlines::WavyUnderlines(TextEditor &editor)
    : m_editor(editor)
{
    editor.addOverlay([this](QPainter &painter) { draw(painter); });
}

void WavyUnderlines::set(const QList<QTextCursor> &places, const QColor &colour)
{
    const auto span = [](const QTextCursor &place) {
        return std::pair(place.selectionStart(), place.selectionEnd());
    };
    if (colour == m_colour && std::ranges::equal(places, m_places, {}, span, span)) {
        return;
    }
    if (colour != m_colour) {
        m_tile = {};
    }
    m_places = places;
    m_colour = colour;
    m_editor.viewport()->update();
}

/// In the viewport, one for each line that the place touches.
QList<QRectF> WavyUnderlines::wavesOf(const QTextCursor &place) const
{
    const QTextDocument &document = *m_editor.document();
    const QTextBlock block = document.findBlock(place.selectionStart());
    const QTextLayout &layout = *block.layout();
    const auto inLayout = [&](int at) { // where what is being composed stands, too
        const bool isBehind = at > layout.preeditAreaPosition();
        return isBehind ? at + int(layout.preeditAreaText().size()) : at;
    };
    const int from = inLayout(place.selectionStart() - block.position());
    const int end = inLayout(std::min(place.selectionEnd() - block.position(), block.length() - 1));
    const QPointF origin =
        m_editor.origin() + document.documentLayout()->blockBoundingRect(block).topLeft();
    QList<QRectF> waves;
    for (int at = from; at < end;) {
        const QTextLine line = layout.lineForTextPosition(at);
        if (!line.isValid() || line.textLength() == 0) {
            break; // it is not laid out yet
        }
        const int lineEnd = std::min(end, line.textStart() + line.textLength());
        // Of the word's own letters: where directions meet, a place between two has two edges.
        const int last = std::max(at, layout.previousCursorPosition(lineEnd));
        const double left = line.cursorToX(at);
        const double right = line.cursorToX(last, QTextLine::Trailing);
        const double room = line.height() - line.ascent(); // what lies outside is not painted anew
        const double height = waveSize.height() * scale();
        const double gap = std::min({room / 2, largestGap * scale(), std::floor(room) - height});
        waves.emplaceBack(origin.x() + std::min(left, right),
                          std::floor(origin.y() + line.y() + line.ascent() + std::max(0.0, gap)),
                          std::abs(right - left), height);
        at = lineEnd;
    }
    return waves;
}

/// Of the waves: they do not become finer than they are without zoom.
double WavyUnderlines::scale() const
{
    return std::max(1.0, m_editor.zoom());
}

const QPixmap &WavyUnderlines::tile()
{
    const double ratio = m_editor.devicePixelRatioF();
    const QSize size = (QSizeF(waveSize) * scale() * ratio).toSize();
    if (m_tile.size() != size || m_tile.devicePixelRatio() != ratio) {
        m_tile = QPixmap(size);
        m_tile.setDevicePixelRatio(ratio);
        m_tile.fill(Qt::transparent);
        const double middle = waveSize.height() / 2.0;
        const double quarter = waveSize.width() / 4.0;
        QPainterPath wave(QPointF(-quarter, middle));
        for (int bow = 0; bow < 3; ++bow) { // one more, as ends of lines are round
            const double from = (2 * bow - 1) * quarter;
            const double top = bow % 2 == 0 ? -1 : 1;
            wave.quadTo(from + quarter, middle + top * (waveSize.height() - lineWidth),
                        from + 2 * quarter, middle);
        }
        QPainter painter(&m_tile);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale(), scale());
        painter.strokePath(wave, QPen(m_colour, lineWidth));
    }
    return m_tile;
}

void WavyUnderlines::draw(QPainter &painter)
{
    const QRectF exposed = painter.clipBoundingRect();
    for (const QTextCursor &place : std::as_const(m_places)) {
        if (place.document() != m_editor.document() || !place.hasSelection()) {
            continue;
        }
        for (const QRectF &wave : wavesOf(place)) {
            if (wave.intersects(exposed)) {
                painter.drawTiledPixmap(wave, tile());
            }
        }
    }
}

} // namespace quorvane
