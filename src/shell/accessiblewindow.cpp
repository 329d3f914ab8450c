#include "shell/accessiblewindow.h"

#include "shell/aboutwindow.h"
#include "shell/preferenceswindow.h"

#include <QAccessibleWidget>

#include <memory>

namespace quorvane {

namespace {

class WindowInterface final : public QAccessibleWidget
{
public:
    explicit WindowInterface(QWidget *window)
        : QAccessibleWidget(window, QAccessible::Window)
    { }
};

QAccessibleInterface *interfaceOf(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!qobject_cast<PreferencesWindow *>(widget) && !qobject_cast<AboutWindow *>(widget)) {
        return nullptr;
    }
    // Owned by Qt's cache of such interfaces.
    return std::make_unique<WindowInterface>(widget).release();
}

} // namespace

void tellOfAccessibleWindows()
{
    QAccessible::installFactory(interfaceOf); // the same one only once
}

} // namespace quorvane
