#include "richtext/rtfrows.h"

#include "richtext/rtfescape.h"
#include "richtext/rtfparagraph.h"
#include "richtext/rtfsink.h"
#include "richtext/rtfwritertables.h"
#include "richtext/textproperties.h"

#include <QBrush>
#include <QTextTable>

#include <algorithm>

namespace quorvane {

namespace {

constexpr qint64 usualColumn = 720; // At least, where there is room.
constexpr int fiftiethsPerCent = 50;

const char *styleWord(QTextFrameFormat::BorderStyle style)
{
    switch (style) {
    case QTextFrameFormat::BorderStyle_Dotted:
        return "\\brdrdot";
    case QTextFrameFormat::BorderStyle_Dashed:
        return "\\brdrdash";
    case QTextFrameFormat::BorderStyle_Double:
        return "\\brdrdb";
    case QTextFrameFormat::BorderStyle_DotDash:
        return "\\brdrdashd";
    case QTextFrameFormat::BorderStyle_DotDotDash:
        return "\\brdrdashdd";
    case QTextFrameFormat::BorderStyle_Groove:
        return "\\brdrengrave";
    case QTextFrameFormat::BorderStyle_Ridge:
        return "\\brdremboss";
    case QTextFrameFormat::BorderStyle_Inset:
        return "\\brdrinset";
    case QTextFrameFormat::BorderStyle_Outset:
        return "\\brdroutset";
    default:
        return "\\brdrs";
    }
}

/// A side of a cell, with the properties of a document and the words of RTF.
struct Side
{
    const char *borderWord;
    const char *paddingWord;
    QTextFormat::Property width;
    QTextFormat::Property style;
    QTextFormat::Property brush;
    QTextFormat::Property padding;
};

constexpr Side sides[] = {
    {"\\clbrdrt", "clpadt", QTextFormat::TableCellTopBorder, QTextFormat::TableCellTopBorderStyle,
     QTextFormat::TableCellTopBorderBrush, QTextFormat::TableCellTopPadding},
    {"\\clbrdrl", "clpadl", QTextFormat::TableCellLeftBorder, QTextFormat::TableCellLeftBorderStyle,
     QTextFormat::TableCellLeftBorderBrush, QTextFormat::TableCellLeftPadding},
    {"\\clbrdrb", "clpadb", QTextFormat::TableCellBottomBorder,
     QTextFormat::TableCellBottomBorderStyle, QTextFormat::TableCellBottomBorderBrush,
     QTextFormat::TableCellBottomPadding},
    {"\\clbrdrr", "clpadr", QTextFormat::TableCellRightBorder,
     QTextFormat::TableCellRightBorderStyle, QTextFormat::TableCellRightBorderBrush,
     QTextFormat::TableCellRightPadding},
};

const char *verticalWord(const QTextTableCellFormat &cell)
{
    switch (cell.verticalAlignment()) {
    case QTextCharFormat::AlignTop:
        return "\\clvertalt";
    case QTextCharFormat::AlignMiddle:
        return "\\clvertalc";
    case QTextCharFormat::AlignBottom:
        return "\\clvertalb";
    default:
        return "";
    }
}

/// Another width would not come back.
qint64 columnWidth(qint64 twips)
{
    return std::clamp<qint64>(twips, narrowestColumn, largestLength);
}

} // namespace

RtfRows::RtfRows(const QTextTable &table, int depth, qint64 room, RtfWriterTables &tables,
                 Spans spans)
    : m_table(table)
    , m_tables(tables)
    , m_spans(spans)
{
    const QTextTableFormat format = table.format();
    m_left = std::clamp<qint64>(twipsOf(format.leftMargin()), -largestLength, largestLength);
    m_headerRows = format.headerRowCount();
    m_start = rtfWord("itap", depth) + "\\trowd \\taflags1 " + rtfWord("trgaph", 0)
        + rtfWord("trleft", m_left);
    if (format.hasProperty(QTextFormat::BlockAlignment)) {
        const Qt::Alignment alignment = format.alignment();
        m_start += alignment.testFlag(Qt::AlignHCenter) ? "\\trqc"
            : alignment.testFlag(Qt::AlignRight)        ? "\\trqr"
                                                        : "";
    }
    measureColumns(format, room);
}

void RtfRows::measureColumns(const QTextTableFormat &format, qint64 room)
{
    const int count = m_table.columns();
    const QList<QTextLength> constraints = format.columnWidthConstraints();
    qint64 fixed = 0;
    int variable = 0;
    for (int i = 0; i < count; ++i) {
        const QTextLength length = constraints.value(i);
        variable += length.type() == QTextLength::VariableLength ? 1 : 0;
        fixed += length.type() == QTextLength::FixedLength ? twipsOf(length.rawValue()) : 0;
    }
    const qint64 share = std::max((room - fixed) / std::max(variable, 1),
                                  count > 0 ? std::min(usualColumn, room / count) : usualColumn);
    qint64 edge = m_left;
    for (int i = 0; i < count; ++i) {
        const QTextLength length = constraints.value(i);
        Column column {"\\clftsWidth1", 0};
        qint64 width = columnWidth(share);
        if (length.type() == QTextLength::FixedLength) {
            width = columnWidth(twipsOf(length.rawValue()));
            column.widthWords = rtfWord("clwWidth", width) + "\\clftsWidth3";
        } else if (length.type() == QTextLength::PercentageLength) {
            const double percent = std::clamp(length.rawValue(), 0.0, 100.0);
            width = columnWidth(qRound64(double(room) * percent / 100));
            column.widthWords =
                rtfWord("clwWidth", qRound64(percent * fiftiethsPerCent)) + "\\clftsWidth2";
        }
        edge += width;
        column.rightEdge = edge;
        m_columns.push_back(column);
    }
}

QByteArray RtfRows::definition(int row) const
{
    QByteArray words = m_start;
    if (row < m_headerRows) {
        words += "\\trhdr";
    }
    const QTextTableCell first = m_table.cellAt(row, 0);
    if (first.row() == row) {
        words += m_tables.withNumbers(first.format().property(RowWords).toByteArray());
    }
    words += '\n';
    for (int column = 0; column < m_table.columns(); ++column) {
        if (isSwallowed(row, column)) {
            continue;
        }
        const int span = m_spans == Spans::Wide ? m_table.cellAt(row, column).columnSpan() : 1;
        words += cellWords(row, column);
        appendWord(words, "cellx", m_columns[std::size_t(column + span - 1)].rightEdge);
        words += '\n';
    }
    return words;
}

qint64 RtfRows::widthOf(const QTextTableCell &cell) const
{
    const auto edge = [this](int column) {
        return column < 0 ? m_left : m_columns[std::size_t(column)].rightEdge;
    };
    return edge(cell.column() + cell.columnSpan() - 1) - edge(cell.column() - 1);
}

bool RtfRows::isSwallowed(int row, int column) const
{
    return m_spans == Spans::Wide && m_table.cellAt(row, column).column() != column;
}

QByteArray RtfRows::cellWords(int row, int column) const
{
    const QTextTableCell cell = m_table.cellAt(row, column);
    QByteArray words;
    if (cell.rowSpan() > 1) {
        words += cell.row() == row ? "\\clvmgf" : "\\clvmrg";
    }
    if (cell.columnSpan() > 1 && m_spans == Spans::Merged) {
        words += cell.column() == column ? "\\clmgf" : "\\clmrg";
    }
    const QTextTableCellFormat format = cell.format().toTableCellFormat();
    words += verticalWord(format);
    if (const int number = m_tables.colourNumber(format.background())) {
        appendWord(words, "clcbpat", number);
    }
    // Of merged cells, readers make more of the edges than of widths.
    words += cell.columnSpan() > 1 ? QByteArray() : m_columns[std::size_t(column)].widthWords;
    if (cell.row() == row && cell.column() == column) {
        words += m_tables.withNumbers(format.property(CellWords).toByteArray());
    }
    return words + borderWords(format) + paddingWords(format);
}

QByteArray RtfRows::borderWords(const QTextTableCellFormat &cell) const
{
    const QTextTableFormat table = m_table.format();
    QByteArray words;
    for (const Side &side : sides) {
        const bool isOwn = cell.hasProperty(side.width);
        const double width = isOwn ? cell.doubleProperty(side.width) : table.border();
        const auto style = isOwn && cell.hasProperty(side.style)
            ? QTextFrameFormat::BorderStyle(cell.intProperty(side.style))
            : (isOwn ? QTextFrameFormat::BorderStyle_Solid : table.borderStyle());
        if (!(width > 0) || style == QTextFrameFormat::BorderStyle_None) {
            continue;
        }
        const QBrush brush = isOwn ? cell.brushProperty(side.brush) : table.borderBrush();
        words += side.borderWord;
        words += styleWord(style);
        appendWord(words, "brdrw", twipsOf(width));
        appendWord(words, "brdrcf", m_tables.colourNumber(brush));
    }
    return words;
}

QByteArray RtfRows::paddingWords(const QTextTableCellFormat &cell) const
{
    QByteArray words;
    for (const Side &side : sides) {
        const double padding = cell.hasProperty(side.padding) ? cell.doubleProperty(side.padding)
                                                              : m_table.format().cellPadding();
        if (padding > 0) {
            words += rtfWord(side.paddingWord, twipsOf(padding)) + "\\clpadf" + side.paddingWord[5]
                + '3';
        }
    }
    return words;
}

} // namespace quorvane
