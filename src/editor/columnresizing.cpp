#include "editor/columnresizing.h"

#include "editor/tablegeometry.h"
#include "editor/tablewidths.h"
#include "editor/texteditor.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double reach = 4; // of the mouse, to each side
constexpr double narrowest = 20;

/// The border of the cell that the place is next to; none where it is next to none, or where that
/// is the left one of the table.
std::optional<int> borderOf(const QTextTableCell &cell, const std::vector<double> &edges, double x)
{
    const int left = cell.column();
    const int right = cell.column() + cell.columnSpan();
    if (std::abs(edges[std::size_t(right)] - x) <= reach) {
        return right - 1;
    }
    if (left > 0 && std::abs(edges[std::size_t(left)] - x) <= reach) {
        return left - 1;
    }
    return std::nullopt;
}

/// The widths of columns with one border moved. What a file says in pixels stays in pixels.
QList<QTextLength> movedWidths(const QTextTable &table, std::vector<double> edges, int column,
                               double to)
{
    edges[std::size_t(column) + 1] = to;
    QList<QTextLength> widths = widthsOf(table);
    const bool isFixed = std::all_of(widths.begin(), widths.end(), [](const QTextLength &width) {
        return width.type() == QTextLength::FixedLength;
    });
    const double room = std::max(roomOf(table), 1.0);
    for (int i = 0; i < widths.size(); ++i) {
        const bool isMoved = i == column || i == column + 1;
        const double width = edges[std::size_t(i) + 1] - edges[std::size_t(i)];
        if (isFixed && isMoved) {
            widths[i] = QTextLength(QTextLength::FixedLength, std::round(width));
        } else if (!isFixed && (isMoved || widths[i].type() != QTextLength::PercentageLength)) {
            widths[i] = shareOf(width / room * 100);
        }
    }
    return widths;
}

} // namespace

ColumnResizing::ColumnResizing(TextEditor &editor)
    : m_editor(editor)
{
    editor.viewport()->setMouseTracking(true);
    editor.viewport()->installEventFilter(this);
    editor.installEventFilter(this);
    editor.addOverlay([this](QPainter &painter) { draw(painter); });
    connect(&editor, &TextEditor::contentHiddenChanged, this, &ColumnResizing::stop);
    connect(&editor, &TextEditor::contentReplaced, this, &ColumnResizing::stop);
}

bool ColumnResizing::eventFilter(QObject *watched, QEvent *event)
{
    const bool isMouse = event->type() == QEvent::MouseMove
        || event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease;
    if (watched == m_editor.viewport() && isMouse) {
        return mouseEvent(*static_cast<QMouseEvent *>(event));
    }
    if (watched == &m_editor && event->type() == QEvent::FocusOut && m_dragged) {
        stop(); // who has the focus now has the mouse, too
    }
    const bool isEscape = watched == &m_editor && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
    if (isEscape && m_dragged) {
        stop();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

bool ColumnResizing::mouseEvent(const QMouseEvent &event)
{
    const QPoint place = event.position().toPoint();
    if (event.type() == QEvent::MouseButtonPress) {
        return event.button() == Qt::LeftButton && press(event);
    }
    if (event.type() == QEvent::MouseButtonRelease) {
        const bool wasDragged = m_dragged.has_value();
        release();
        return wasDragged;
    }
    if (m_dragged) {
        drag(place);
        return true;
    }
    showCursor(event.buttons() == Qt::NoButton && edgeAt(place));
    return false;
}

bool ColumnResizing::press(const QMouseEvent &event)
{
    m_dragged =
        event.modifiers() == Qt::NoModifier ? edgeAt(event.position().toPoint()) : std::nullopt;
    if (m_dragged) {
        m_edge = m_dragged->edges[std::size_t(m_dragged->column) + 1];
        m_grip = event.position().x() - m_editor.origin().x() - m_edge;
        showCursor(true);
    }
    return m_dragged.has_value();
}

// An undo by the keyboard changes the table while the mouse is down.
bool ColumnResizing::isAsItWas(const Edge &edge)
{
    return edge.table && std::size_t(edge.table->columns()) + 1 == edge.edges.size();
}

void ColumnResizing::drag(const QPoint &place)
{
    if (!isAsItWas(*m_dragged)) {
        stop();
        return;
    }
    const std::size_t before = std::size_t(m_dragged->column);
    const std::vector<double> &edges = m_dragged->edges;
    const double left = edges[before] + narrowest;
    const double end = edges.front() + roomOf(*m_dragged->table);
    const bool isFull = edges.back() > end - reach; // the layout rounds
    const bool isLast = before + 2 == edges.size();
    const double right = !isLast ? edges[before + 2] - narrowest : isFull ? edges.back() : end;
    m_edge = std::clamp(place.x() - m_editor.origin().x() - m_grip, left, std::max(left, right));
    m_editor.viewport()->update();
}

void ColumnResizing::release()
{
    if (!m_dragged) {
        return;
    }
    const Edge edge = *m_dragged;
    stop();
    const bool isMoved = std::abs(m_edge - edge.edges[std::size_t(edge.column) + 1]) >= 1;
    if (isAsItWas(edge) && isMoved) {
        m_editor.edit(u"Resize Column"_s, [&](QTextCursor &) {
            setWidths(*edge.table, movedWidths(*edge.table, edge.edges, edge.column, m_edge));
        });
    }
}

void ColumnResizing::stop()
{
    m_dragged.reset();
    showCursor(false);
    m_editor.viewport()->update();
}

void ColumnResizing::showCursor(bool isOverEdge)
{
    if (m_isOverEdge != isOverEdge) { // others have cursors to show, too
        m_isOverEdge = isOverEdge;
        m_editor.viewport()->setCursor(isOverEdge ? Qt::SplitHCursor : Qt::IBeamCursor);
    }
}

std::optional<ColumnResizing::Edge> ColumnResizing::edgeAt(const QPoint &place) const
{
    const bool hasTables = !m_editor.document()->rootFrame()->childFrames().isEmpty();
    if (!hasTables || m_editor.isReadOnly() || m_editor.isContentHidden()) {
        return std::nullopt;
    }
    for (const int aside : {0, -int(reach)}) { // right of the table is no table any more
        const QTextCursor cursor = m_editor.cursorForPosition(place + QPoint(aside, 0));
        QTextTable *const table = cursor.currentTable();
        if (!table) {
            continue;
        }
        const QTextTableCell cell = table->cellAt(cursor);
        const std::vector<double> rows =
            rowEdges(*table, cell.row(), cell.row() + cell.rowSpan() - 1);
        const QPointF at = QPointF(place) - m_editor.origin();
        const std::vector<double> edges = columnEdges(*table);
        const auto column = borderOf(cell, edges, at.x());
        if (column && at.y() >= rows.front() && at.y() <= rows.back()) {
            return Edge {table, *column, edges};
        }
    }
    return std::nullopt;
}

void ColumnResizing::draw(QPainter &painter) const
{
    if (!m_dragged || !m_dragged->table) {
        return;
    }
    const std::vector<double> rows = rowEdges(*m_dragged->table, 0, m_dragged->table->rows() - 1);
    const QPointF origin = m_editor.origin();
    painter.setPen(QPen(m_editor.palette().color(QPalette::Highlight), 2));
    painter.drawLine(QPointF(m_edge, rows.front()) + origin, QPointF(m_edge, rows.back()) + origin);
}

} // namespace quorvane
