#include "shell/recentlist.h"

#include "platform/recentdocuments.h"
#include "shell/shownpath.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int folderRole = Qt::UserRole + 1;
constexpr int isThereRole = Qt::UserRole + 2;
constexpr int padding = 8;
constexpr int crossExtent = 9;
constexpr float paleness = 0.65F;

QRect crossPlace(const QRect &row)
{
    const int side = crossExtent + 2 * padding;
    return {row.right() - side, row.center().y() - side / 2, side, side};
}

class RowDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const override
    {
        return {20 * padding, 2 * option.fontMetrics.height() + 2 * padding};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        QStyleOptionViewItem row(option);
        row.state.setFlag(QStyle::State_HasFocus, false);
        row.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, row.widget);
        painter->save();
        const bool isThere = index.data(isThereRole).toBool();
        const QColor strong = inkOf(row, isThere);
        QColor weak = strong;
        weak.setAlphaF(isThere ? paleness : 1.0F);
        const bool hasCross = row.state & (QStyle::State_MouseOver | QStyle::State_Selected);
        const QRect words = row.rect.adjusted(padding, padding,
                                              -(crossPlace(row.rect).width() + padding), -padding);
        QFont font = row.font;
        font.setWeight(QFont::DemiBold);
        drawLine(*painter, words, Qt::AlignTop, font, strong, index.data().toString());
        drawLine(*painter, words, Qt::AlignBottom, row.font, weak,
                 index.data(folderRole).toString());
        if (hasCross) {
            drawCross(*painter, crossPlace(row.rect), weak);
        }
        painter->restore();
    }

private:
    static QColor inkOf(const QStyleOptionViewItem &row, bool isThere)
    {
        if (row.state & QStyle::State_Selected) {
            const bool isActive = row.state & QStyle::State_Active;
            return row.palette.color(isActive ? QPalette::Active : QPalette::Inactive,
                                     QPalette::HighlightedText);
        }
        return row.palette.color(isThere ? QPalette::Active : QPalette::Disabled, QPalette::Text);
    }

    static void drawLine(QPainter &painter, const QRect &place, Qt::Alignment alignment,
                         const QFont &font, const QColor &color, const QString &text)
    {
        painter.setFont(font);
        painter.setPen(color);
        const QString shown = QFontMetrics(font).elidedText(text, Qt::ElideMiddle, place.width());
        painter.drawText(place, static_cast<int>(alignment | Qt::AlignLeft) | Qt::TextSingleLine,
                         shown);
    }

    static void drawCross(QPainter &painter, const QRect &place, const QColor &color)
    {
        const QRectF cross =
            QRectF(place).marginsRemoved(QMarginsF(padding, padding, padding, padding));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, 1.4));
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
    }
};

} // namespace

RecentList::RecentList(RecentDocuments &recents, QWidget *parent)
    : QListWidget(parent)
    , m_recents(recents)
{
    setAccessibleName(u"Recent Documents"_s);
    setItemDelegate(new RowDelegate(this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setMouseTracking(true);
    setUniformItemSizes(true);
    connect(&m_recents, &RecentDocuments::changed, this, &RecentList::reload);
    reload();
}

void RecentList::reload()
{
    const int row = currentRow();
    clear();
    const QStringList paths = m_recents.paths();
    for (const QString &path : paths) {
        const bool isThere = m_recents.isThere(path);
        const QString folder = shownFolder(path);
        auto *item = new QListWidgetItem(shownName(path), this);
        item->setData(pathRole, path);
        item->setData(folderRole, isThere ? folder : u"Not found in %1"_s.arg(folder));
        item->setData(isThereRole, isThere);
        item->setData(
            Qt::AccessibleTextRole,
            (isThere ? u"%1, in %2"_s : u"%1, not found in %2"_s).arg(item->text(), folder));
        item->setToolTip(path.toHtmlEscaped());
    }
    setCurrentRow(std::min(std::max(row, 0), count() - 1));
}

void RecentList::keyPressEvent(QKeyEvent *event)
{
    const QListWidgetItem *item = currentItem();
    if (item && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        Q_EMIT chosen(item->data(pathRole).toString());
    } else if (item && event->key() == Qt::Key_Delete) {
        m_recents.remove(item->data(pathRole).toString());
    } else {
        QListWidget::keyPressEvent(event);
    }
}

void RecentList::mouseMoveEvent(QMouseEvent *event)
{
    const QListWidgetItem *item = itemAt(event->pos());
    viewport()->setCursor(item ? Qt::PointingHandCursor : Qt::ArrowCursor);
    QListWidget::mouseMoveEvent(event);
}

void RecentList::mouseReleaseEvent(QMouseEvent *event)
{
    const QListWidgetItem *item = itemAt(event->pos());
    QListWidget::mouseReleaseEvent(event);
    if (!item || item != currentItem() || event->button() != Qt::LeftButton) {
        return;
    }
    const QString path = item->data(pathRole).toString();
    if (crossPlace(visualItemRect(item)).contains(event->pos())) {
        m_recents.remove(path);
    } else {
        Q_EMIT chosen(path);
    }
}

void RecentList::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
    const QListWidgetItem *item = isByMouse ? itemAt(event->pos()) : currentItem();
    if (!item) {
        return;
    }
    const QString path = item->data(pathRole).toString();
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(u"&Open"_s), &QAction::triggered, this,
            [this, path] { Q_EMIT chosen(path); });
    connect(menu->addAction(u"&Remove from Recent Documents"_s), &QAction::triggered, this,
            [this, path] { m_recents.remove(path); });
    menu->popup(isByMouse ? event->globalPos()
                          : viewport()->mapToGlobal(visualItemRect(item).center()));
}

void RecentList::paintEvent(QPaintEvent *event)
{
    QListWidget::paintEvent(event);
    if (count() > 0) {
        return;
    }
    QPainter painter(viewport());
    QColor ink = palette().color(QPalette::Text);
    ink.setAlphaF(paleness);
    painter.setPen(ink);
    painter.drawText(viewport()->rect().adjusted(3 * padding, 0, -3 * padding, 0),
                     Qt::AlignCenter | Qt::TextWordWrap,
                     u"The documents that you open or save will be listed here."_s);
}

} // namespace quorvane
