#include "shell/qvpreftoolbardelegate.h"

#include "platform/nswindow.h"

#include <QActionGroup>
#include <QEvent>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int smallestItem = 72;

} // namespace

QVPrefToolbarDelegate::QVPrefToolbarDelegate(QWidget &widget, QVBoxLayout &column, NSWindow *window,
                                             QStackedWidget &tabView)
    : QObject(&widget)
    , m_widget(widget)
    , m_column(column)
    , m_myWindow(window)
    , m_tabView(tabView)
    , m_items(new QActionGroup(this))
{
    m_widget.installEventFilter(this);
}

void QVPrefToolbarDelegate::awakeFromNib()
{
    m_toolbar = new QToolBar(u"Panels"_s, &m_widget);
    m_toolbar->setObjectName(u"prefToolBar"_s);
    m_toolbar->setMovable(false);
    m_toolbar->setContextMenuPolicy(Qt::PreventContextMenu);
    m_toolbar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_myHeightArray = heightArray();
    AttachToWindow();
    PanelAction(nullptr);
}

void QVPrefToolbarDelegate::AttachToWindow()
{
    const QStringList identifiers = toolbarDefaultItemIdentifiers();
    for (const QString &identifier : identifiers) {
        QAction *item = toolbarItemForItemIdentifier(identifier);
        if (!item) {
            continue;
        }
        item->setCheckable(true);
        m_items->addAction(item);
        m_toolbar->addAction(item);
        QWidget *button = m_toolbar->widgetForAction(item);
        button->setFocusPolicy(Qt::TabFocus);
        button->setMinimumWidth(smallestItem);
        connect(item, &QAction::triggered, this, [this, item] { PanelAction(item); });
    }
    m_column.insertWidget(0, m_toolbar);
}

int QVPrefToolbarDelegate::ToolbarHeightForWindow(const NSWindow *window) const
{
    if (!window) {
        return 0;
    }
    const int titleBar = m_widget.frameGeometry().height() - m_widget.height();
    return titleBar + m_toolbar->sizeHint().height();
}

void QVPrefToolbarDelegate::PanelAction(QAction *item)
{
    if (item) {
        item->setChecked(true);
        m_widget.setWindowTitle(item->text());
        show(item->data().toInt());
        return;
    }
    const QList<QAction *> items = m_items->actions();
    if (!items.isEmpty()) {
        items.first()->setChecked(true);
        m_widget.setWindowTitle(items.first()->text());
    }
    show(0);
}

void QVPrefToolbarDelegate::SetPanelTab(qint32 panel)
{
    const QList<QAction *> items = m_items->actions();
    if (panel < 0 || panel >= items.size()) {
        return;
    }
    items[panel]->setChecked(true);
    m_widget.setWindowTitle(items[panel]->text());
    show(panel);
}

void QVPrefToolbarDelegate::show(int panel)
{
    m_tabView.setCurrentIndex(panel);
    const QWidget *shown = m_tabView.currentWidget();
    // Larger fonts than usual take more room.
    const int height =
        std::max(m_myHeightArray.value(panel), shown ? shown->minimumSizeHint().height() : 0);
    m_wantedHeight = height + m_toolbar->sizeHint().height();
    if (!m_widget.isVisible()) {
        // What the title bar will take is not known yet: the content must not pay for it.
        m_widget.setMinimumHeight(m_wantedHeight);
        m_widget.resize(m_widget.width(), m_wantedHeight);
        return;
    }
    m_widget.setMinimumHeight(std::min(m_wantedHeight, m_widget.minimumHeight()));
    NSRect frame = m_myWindow ? m_myWindow->frame() : NSRect();
    const int newHeight = height + ToolbarHeightForWindow(m_myWindow);
    const int difference = newHeight - static_cast<int>(frame.height);
    frame.y -= difference;
    frame.height = newHeight;
    if (m_myWindow) {
        m_myWindow->setFrame(frame, true);
    }
    bindSize();
}

// No panel is cut short by hand; on the way to it, the window is smaller.
void QVPrefToolbarDelegate::bindSize()
{
    if (m_widget.height() == m_wantedHeight) {
        m_widget.setMinimumHeight(m_wantedHeight);
    }
}

bool QVPrefToolbarDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize) {
        bindSize();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quorvane
