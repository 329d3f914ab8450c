#include "editor/toolstrip.h"

#include "editor/glyphicon.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
constexpr int groupDistance = 7; // with a line in its middle
constexpr int toolDistance = 1;
} // namespace

ToolStrip::ToolStrip(QWidget *parent)
    : QWidget(parent)
    , m_more(new QToolButton(this))
    , m_panel(new QFrame(this, Qt::Popup))
    , m_rows(new QVBoxLayout(m_panel))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_more->setAutoRaise(true);
    m_more->setIcon(glyphIcon(Glyph::More));
    m_more->setIconSize(glyphSize);
    m_more->setToolTip(u"More Tools"_s);
    m_more->setAccessibleName(u"More Tools"_s);
    m_more->setFocusPolicy(Qt::TabFocus);
    m_more->hide();
    connect(m_more, &QToolButton::clicked, this, &ToolStrip::openPanel);
    m_panel->setFrameStyle(int(QFrame::StyledPanel) | int(QFrame::Raised));
    m_panel->setAccessibleName(u"More Tools"_s);
    m_rows->setContentsMargins(8, 8, 8, 8);
    m_rows->setSpacing(6);
}

void ToolStrip::addGroup(const QList<QWidget *> &tools, int rank)
{
    auto *box = new QWidget(this);
    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(toolDistance);
    for (QWidget *tool : tools) {
        row->addWidget(tool);
        closePanelBehind(*tool);
    }
    m_groups.push_back({box, rank});
    updateGeometry();
}

void ToolStrip::closePanelBehind(QWidget &tool)
{
    const auto close = [this] {
        closePanel();
    };
    if (auto *choice = qobject_cast<QComboBox *>(&tool)) {
        connect(choice, &QComboBox::activated, this, close);
    } else if (auto *button = qobject_cast<QToolButton *>(&tool); button && button->menu()) {
        connect(button->menu(), &QMenu::triggered, this, close);
    } else if (button) {
        connect(button, &QToolButton::clicked, this, close);
    }
}

void ToolStrip::openPanel()
{
    m_panel->adjustSize();
    const QRect room = screen()->availableGeometry();
    const QPoint corner = m_more->mapToGlobal(QPoint(m_more->width(), m_more->height() + 2));
    m_panel->move(std::max(room.left(), corner.x() - m_panel->width()),
                  std::min(corner.y(), room.bottom() - m_panel->height()));
    m_panel->show();
    for (const Group &group : m_groups) {
        const QList<QWidget *> tools =
            group.box->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        const auto first = std::find_if(tools.begin(), tools.end(), [&group](const QWidget *tool) {
            return !group.fits && tool->isEnabled();
        });
        if (first != tools.end()) {
            (*first)->setFocus(Qt::PopupFocusReason);
            return;
        }
    }
}

void ToolStrip::closePanel()
{
    m_panel->close();
}

bool ToolStrip::isInPanel(const QWidget &tool) const
{
    return m_panel->isAncestorOf(&tool);
}

int ToolStrip::widthOfFitting() const
{
    int width = -groupDistance;
    for (const Group &group : m_groups) {
        width += group.fits ? group.box->sizeHint().width() + groupDistance : 0;
    }
    return std::max(0, width);
}

void ToolStrip::chooseWhatFits()
{
    for (Group &group : m_groups) {
        group.fits = true;
    }
    int room = width();
    while (widthOfFitting() > room) {
        const auto next =
            std::max_element(m_groups.begin(), m_groups.end(), [](const Group &a, const Group &b) {
                return std::pair(a.fits, a.rank) < std::pair(b.fits, b.rank);
            });
        next->fits = false;
        room = width() - m_more->sizeHint().width() - groupDistance;
    }
}

void ToolStrip::arrange()
{
    chooseWhatFits();
    fillPanel();
    int x = 0;
    for (const Group &group : m_groups) {
        if (group.fits) {
            const QSize size = group.box->sizeHint();
            const QRect place(x, (height() - size.height()) / 2, size.width(), size.height());
            group.box->setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
            x += size.width() + groupDistance;
        }
    }
    const bool allFit =
        std::all_of(m_groups.begin(), m_groups.end(), [](const Group &one) { return one.fits; });
    const QSize size = m_more->sizeHint();
    const QRect place(width() - size.width(), (height() - size.height()) / 2, size.width(),
                      size.height());
    m_more->setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
    m_more->setVisible(!allFit);
    update();
}

void ToolStrip::fillPanel()
{
    const auto isThere = [](const Group &group, const QWidget *place) {
        return group.box->parentWidget() == place;
    };
    const bool isRight = std::all_of(m_groups.begin(), m_groups.end(), [&](const Group &group) {
        return isThere(group, group.fits ? static_cast<QWidget *>(this) : m_panel);
    });
    if (isRight) {
        return;
    }
    closePanel();
    for (const Group &group : m_groups) {
        m_rows->removeWidget(group.box);
        if (group.fits && !isThere(group, this)) {
            group.box->setParent(this);
            group.box->show();
        } else if (!group.fits) {
            m_rows->addWidget(group.box, 0, Qt::AlignLeft);
            group.box->show();
        }
    }
    emit moved();
}

QSize ToolStrip::sizeHint() const
{
    int width = 0;
    int height = m_more->sizeHint().height();
    for (const Group &group : m_groups) {
        width += group.box->sizeHint().width() + groupDistance;
        height = std::max(height, group.box->sizeHint().height());
    }
    return {std::max(0, width - groupDistance), height};
}

QSize ToolStrip::minimumSizeHint() const
{
    return {m_more->sizeHint().width(), sizeHint().height()};
}

bool ToolStrip::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        arrange();
    }
    return QWidget::event(event);
}

void ToolStrip::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
}

// The lines between the groups.
void ToolStrip::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor ink = palette().color(QPalette::WindowText);
    ink.setAlphaF(0.2F);
    int right = 0;
    for (const Group &group : m_groups) {
        if (group.fits && right > 0) {
            const QRect line(right + groupDistance / 2, 3, 1, height() - 6);
            painter.fillRect(QStyle::visualRect(layoutDirection(), rect(), line), ink);
        }
        right = group.fits ? right + group.box->width() + (right > 0 ? groupDistance : 0) : right;
    }
}

} // namespace quorvane
