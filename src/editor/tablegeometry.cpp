#include "editor/tablegeometry.h"

#include <QAbstractTextDocumentLayout>
#include <QGuiApplication>
#include <QPaintDevice>
#include <QScreen>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

#include <algorithm>

namespace quorvane {

namespace {

/// The layout's pixels in one of the formats.
double scaleOf(const QTextTable &table)
{
    const QPaintDevice *device = table.document()->documentLayout()->paintDevice();
    const QScreen *screen = QGuiApplication::primaryScreen();
    return device && screen ? device->logicalDpiY() / screen->logicalDotsPerInchY() : 1;
}

/// Of a block, up to the margins of what it stands in. Its own margins are none of its layout's.
struct Extent
{
    double left;
    double right;
    double top;
};

Extent extentOf(const QTextBlock &block, double scale)
{
    const QTextBlockFormat format = block.blockFormat();
    const QRectF rect = block.document()->documentLayout()->blockBoundingRect(block);
    const QTextLayout &layout = *block.layout();
    const QRectF line = layout.lineCount() > 0 ? layout.lineAt(0).rect() : QRectF();
    return {rect.left(), rect.left() + line.right() + format.rightMargin() * scale,
            rect.top() - format.topMargin() * scale};
}

/// The first cell that begins, or ends, with that column.
QTextTableCell cellAtEdge(const QTextTable &table, int column, bool isLeft)
{
    for (int row = 0; row < table.rows(); ++row) {
        const QTextTableCell cell = table.cellAt(row, column);
        const int own = isLeft ? cell.column() : cell.column() + cell.columnSpan() - 1;
        if (own == column) {
            return cell;
        }
    }
    return table.cellAt(0, column);
}

} // namespace

std::vector<double> columnEdges(const QTextTable &table)
{
    const double scale = scaleOf(table);
    std::vector<double> edges;
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = cellAtEdge(table, column, true);
        const QTextTableCellFormat format = cell.format().toTableCellFormat();
        edges.push_back(extentOf(cell.firstCursorPosition().block(), scale).left
                        - (format.leftPadding() + format.leftBorder() / 2) * scale);
    }
    const QTextTableCell last = cellAtEdge(table, table.columns() - 1, false);
    const QTextTableCellFormat format = last.format().toTableCellFormat();
    edges.push_back(extentOf(last.firstCursorPosition().block(), scale).right
                    + (format.rightPadding() + format.rightBorder() / 2) * scale);
    return edges;
}

std::vector<double> rowEdges(const QTextTable &table, int first, int last)
{
    const double scale = scaleOf(table);
    const QTextDocument &document = *table.document();
    std::vector<double> edges;
    for (int row = first; row <= last + 1; ++row) {
        if (row == table.rows()) {
            const QTextBlock behind = document.findBlock(table.lastPosition() + 1);
            edges.push_back(extentOf(behind, scale).top - table.format().bottomMargin() * scale);
            break;
        }
        double top = 0;
        bool isKnown = false;
        for (int column = 0; column < table.columns(); ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            if (cell.row() != row) {
                continue;
            }
            const QTextTableCellFormat format = cell.format().toTableCellFormat();
            const double candidate = extentOf(cell.firstCursorPosition().block(), scale).top
                - (format.topPadding() + format.topBorder() / 2) * scale;
            top = isKnown ? std::min(top, candidate) : candidate; // others may stand lower in it
            isKnown = true;
        }
        edges.push_back(isKnown || edges.empty() ? top : edges.back());
    }
    return edges;
}

QTextBlock blockBeside(const QTextBlock &block)
{
    for (QTextFrame *frame = QTextCursor(block).currentFrame(); frame;
         frame = frame->parentFrame()) {
        const auto *table = qobject_cast<const QTextTable *>(frame);
        const QTextTableCell cell = table ? table->cellAt(block.position()) : QTextTableCell();
        const QTextBlock behind =
            cell.isValid() ? cell.lastCursorPosition().block().next() : QTextBlock();
        const QTextTableCell next =
            behind.isValid() ? table->cellAt(behind.position()) : QTextTableCell();
        if (next.isValid() && next.row() < cell.row() + cell.rowSpan()) {
            return behind;
        }
    }
    return {};
}

double roomOf(const QTextTable &table)
{
    const QTextBlock behind = table.document()->findBlock(table.lastPosition() + 1);
    const Extent extent = extentOf(behind, scaleOf(table));
    return extent.right - extent.left;
}

} // namespace quorvane
