#pragma once

#include "richtext/textproperties.h"

#include <QBrush>
#include <QStringList>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <QTextOption>
#include <QTextTable>

#include <utility>

using namespace Qt::StringLiterals;

/// What a document says of its text, in a form to read and to compare: "{look}" of a paragraph,
/// "[look]" of a run, "item" with its list, "table" with its columns and cells. A property without
/// a name here comes with its number.
class DescribedText final
{
public:
    static QString of(const QTextDocument &document)
    {
        return frame(document.rootFrame()->begin()).join(u'\n');
    }

    static QString of(const QTextFormat &format)
    {
        QStringList parts;
        const QMap<int, QVariant> properties = format.properties();
        for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
            // Numbers that the document gives, and a property that repeats another one.
            const bool isTold = it.key() == quorvane::AttachmentId
                || it.key() == QTextFormat::ObjectIndex || it.key() == QTextFormat::ObjectType
                || it.key() == QTextFormat::FontUnderline;
            if (!isTold) {
                parts << name(it.key()) + value(it.value());
            }
        }
        return parts.join(u' ');
    }

private:
    static QString name(int property)
    {
        using F = QTextFormat;
        using namespace quorvane;
        static const std::pair<int, const char *> names[] = {
            {F::FontFamilies, ""},
            {F::FontPointSize, ""},
            {F::FontWeight, "weight="},
            {F::FontItalic, "italic="},
            {F::TextUnderlineStyle, "line="},
            {F::TextUnderlineColor, "linecolour="},
            {F::FontStrikeOut, "strike="},
            {F::TextVerticalAlignment, "vertical="},
            {F::TextBaselineOffset, "offset="},
            {F::ForegroundBrush, "fg="},
            {F::BackgroundBrush, "bg="},
            {F::FontCapitalization, "caps="},
            {F::FontLetterSpacing, "spacing="},
            {F::FontLetterSpacingType, "by="},
            {F::FontKerning, "kerning="},
            {F::IsAnchor, "anchor="},
            {F::AnchorHref, "to="},
            {F::BlockAlignment, "align="},
            {F::LayoutDirection, "direction="},
            {F::BlockLeftMargin, "left="},
            {F::BlockRightMargin, "right="},
            {F::BlockTopMargin, "top="},
            {F::BlockBottomMargin, "bottom="},
            {F::TextIndent, "first="},
            {F::LineHeight, "height="},
            {F::LineHeightType, "heightkind="},
            {F::TabPositions, "tabs="},
            {F::HeadingLevel, "heading="},
            {F::PageBreakPolicy, "break="},
            {F::ListStyle, "style="},
            {F::ListIndent, "indent="},
            {F::ListNumberPrefix, "prefix="},
            {F::ListNumberSuffix, "suffix="},
            {F::TableColumnWidthConstraints, "columns="},
            {F::TableHeaderRowCount, "headers="},
            {F::FrameLeftMargin, "left="},
            {F::TableCellRowSpan, "rows="},
            {F::TableCellColumnSpan, "columns="},
            {F::TableCellTopBorder, "topborder="},
            {F::TableCellLeftBorder, "leftborder="},
            {F::TableCellTopBorderStyle, "topstyle="},
            {F::TableCellTopBorderBrush, "topbrush="},
            {F::TableCellLeftPadding, "leftpadding="},
            {F::TableCellRightPadding, "rightpadding="},
            {AttachmentName, "file="},
            {AttachmentWidth, "w="},
            {AttachmentHeight, "h="},
            {ParagraphWords, "words="},
            {CharacterWords, "words="},
            {BaselineShift, "shift="},
            {UnderlineWord, "word="},
            {DoubleStrike, "double="},
            {StrikeColour, "strikecolour="},
            {LinkLook, "linklook="},
            {TabLeaders, "leaders="},
            {MaximumLineHeight, "maximum="},
            {ListFirstIndent, "listfirst="},
            {BeforeTable, "beforetable="},
            {ListStart, "start="},
            {ListMarker, "marker="},
            {ListLevelText, "leveltext="},
            {ListKind, "kind="},
            {F::BlockTrailingHorizontalRulerWidth, "rule="},
            {CellWords, "words="},
            {RowWords, "rowwords="},
        };
        for (const auto &[known, text] : names) {
            if (known == property) {
                return QString::fromLatin1(text);
            }
        }
        return QString::number(property, 16) + u'=';
    }

    static QString value(const QVariant &value)
    {
        if (value.userType() == QMetaType::Double) {
            return QString::number(value.toDouble(), 'g', 8);
        }
        if (value.userType() == QMetaType::QBrush) {
            return value.value<QBrush>().color().name(QColor::HexArgb);
        }
        if (value.userType() == QMetaType::QTextLength) {
            const auto length = value.value<QTextLength>();
            return QString::number(length.rawValue(), 'g', 8) + u"vx%"[int(length.type())];
        }
        if (value.userType() == qMetaTypeId<QTextOption::Tab>()) {
            const auto tab = value.value<QTextOption::Tab>();
            return QString::number(tab.position, 'g', 8) + u"lrcd"[int(tab.type)];
        }
        if (value.userType() == QMetaType::QVariantList) {
            QStringList parts;
            for (const QVariant &each : value.toList()) {
                parts << DescribedText::value(each);
            }
            return parts.join(u',');
        }
        if (value.userType() == QMetaType::QStringList) {
            return value.toStringList().join(u',');
        }
        return value.toString();
    }

    static QStringList frame(QTextFrame::iterator it)
    {
        QStringList lines;
        for (; !it.atEnd(); ++it) {
            if (const auto *table = qobject_cast<QTextTable *>(it.currentFrame())) {
                lines << DescribedText::table(*table);
            } else {
                lines << block(it.currentBlock());
            }
        }
        return lines;
    }

    static QString block(const QTextBlock &block)
    {
        QString line = braced(u'{', of(block.blockFormat()), u'}');
        if (const QTextList *list = block.textList()) {
            const QString number = QString::number(list->itemNumber(block) + 1);
            line += u"item "_s + number + braced(u'{', of(list->format()), u'}');
        }
        QString last;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QString look = of(it.fragment().charFormat());
            line += look == last ? QString() : u'[' + look + u']';
            line += it.fragment().text();
            last = look;
        }
        return line;
    }

    static QString table(const QTextTable &table)
    {
        QTextTableFormat format = table.format();
        for (const int usual : {QTextFormat::FrameBorder, QTextFormat::TableBorderCollapse,
                                QTextFormat::TableCellSpacing, QTextFormat::TableCellPadding,
                                QTextFormat::FrameBorderBrush, QTextFormat::FrameBorderStyle,
                                QTextFormat::TableColumns}) {
            format.clearProperty(usual);
        }
        QString text = u"table "_s + QString::number(table.rows()) + u'x'
            + QString::number(table.columns()) + braced(u'{', of(format), u'}');
        for (int row = 0; row < table.rows(); ++row) {
            for (int column = 0; column < table.columns(); ++column) {
                const QTextTableCell cell = table.cellAt(row, column);
                if (cell.row() == row && cell.column() == column) {
                    text += QString(column == 0 ? 1 : 0, u'\n') + u'('
                        + braced(u'{', of(cell.format()), u'}') + frame(cell.begin()).join(u" / ")
                        + u')';
                }
            }
        }
        return text;
    }

    static QString braced(char16_t open, const QString &text, char16_t close)
    {
        return text.isEmpty() ? text : QChar(open) + text + QChar(close);
    }
};
