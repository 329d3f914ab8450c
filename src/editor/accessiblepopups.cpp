#include "editor/accessiblepopups.h"

#include "editor/documentwindow.h"
#include "editor/toolstrip.h"

#include <QAccessibleWidget>
#include <QFrame>

#include <memory>

namespace quorvane {

namespace {

/// A widget whose pop-ups come after its other children.
class PopupOwner final : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    int childCount() const override
    {
        return QAccessibleWidget::childCount() + int(popups().size());
    }

    QAccessibleInterface *child(int index) const override
    {
        const int at = index - QAccessibleWidget::childCount();
        return at < 0 || at >= popups().size()
            ? QAccessibleWidget::child(index)
            : QAccessible::queryAccessibleInterface(popups().at(at));
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const QList<QFrame *> shown = popups();
        for (int i = 0; i < shown.size(); ++i) {
            if (child && child->object() == shown[i]) {
                return QAccessibleWidget::childCount() + i;
            }
        }
        return QAccessibleWidget::indexOfChild(child);
    }

private:
    QList<QFrame *> popups() const
    {
        QList<QFrame *> all =
            widget()->findChildren<QFrame *>(QString(), Qt::FindDirectChildrenOnly);
        all.removeIf(
            [](const QFrame *one) { return one->windowType() != Qt::Popup || !one->isVisible(); });
        return all;
    }
};

QAccessibleInterface *interfaceOf(const QString &, QObject *object)
{
    // Owned by Qt's cache of such interfaces.
    if (auto *window = qobject_cast<DocumentWindow *>(object)) {
        return std::make_unique<PopupOwner>(window, QAccessible::Window).release();
    }
    if (auto *strip = qobject_cast<ToolStrip *>(object)) {
        return std::make_unique<PopupOwner>(strip, QAccessible::Grouping).release();
    }
    return nullptr;
}

} // namespace

void tellOfAccessiblePopups()
{
    QAccessible::installFactory(interfaceOf); // the same one only once
}

} // namespace quorvane
