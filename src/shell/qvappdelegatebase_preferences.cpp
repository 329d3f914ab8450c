#include "platform/nswindow.h"
#include "shell/qvappdelegatebase.h"
#include "shell/qvpreftoolbardelegate.h"

namespace quorvane {

using namespace Qt::StringLiterals;

void QVAppDelegateBase::setPrefWindow(NSWindow *window, QVPrefToolbarDelegate *delegate)
{
    m_prefWindow = window;
    m_prefToolbarDelegate = delegate;
}

// Made when it is first wanted: most runs of the program have no use for it.
bool QVAppDelegateBase::preparePrefWindow()
{
    if (!m_prefWindow) {
        loadPrefWindow();
    }
    if (m_prefWindow && !m_prefWindow->isVisible()) {
        m_prefWindow->center();
    }
    return m_prefWindow;
}

// The Window menu lists documents, and so never this window.
void QVAppDelegateBase::openPreferences()
{
    if (preparePrefWindow()) {
        m_prefWindow->makeKeyAndOrderFront();
    }
}

void QVAppDelegateBase::openPreferencesAtSenderTagTab(qint64 tag)
{
    openPreferencesAtTab(static_cast<qint32>(tag));
}

void QVAppDelegateBase::openPreferencesAtTab(qint32 panel)
{
    openPreferences();
    if (m_prefToolbarDelegate) {
        m_prefToolbarDelegate->SetPanelTab(panel);
    }
}

void QVAppDelegateBase::restoreDefaults()
{
    const NSAlert question {u"Restore all preferences to what they were at first?"_s,
                            u"The document that is selected for startup stays selected."_s,
                            {u"Restore"_s, u"Cancel"_s}};
    m_surroundings.alerts.runModal(question, [self = QPointer(this)](AlertAnswer answer) {
        if (self && answer == AlertAnswer::First) {
            self->defaults().revertToInitialValues();
        }
    });
}

} // namespace quorvane
