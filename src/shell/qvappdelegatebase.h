#pragma once

#include "platform/nsalert.h"
#include "platform/nsdocumentcontroller.h"
#include "platform/nsfont.h"
#include "platform/nstimer.h"
#include "platform/nsuserdefaults.h"
#include "platform/nsworkspace.h"
#include "platform/securityscopedaccess.h"

#include <QPointer>

#include <functional>
#include <memory>

class QMenu;
class QWidget;

namespace quorvane {

class AboutWindow;
class QVPhoneHome;
class QVPrefToolbarDelegate;

/// What an application delegate asks of the world around it.
struct AppSurroundings
{
    NSUserDefaults &defaults;
    NSDocumentController &documents;
    TimerFactory &timers;
    NSOperationQueue &mainQueue;
    ModalAlerts &alerts;
    FilePanels &panels;
    NSWorkspace &workspace;
    NSFontManager &fontManager;
    SecurityScopedAccess &access;
    QVPhoneHome &phoneHome;
    /// Makes a window of the platform's over a widget that outlives it.
    std::function<std::unique_ptr<NSWindow>(QWidget &widget)> adaptWindow;
};

/// The part of the application delegate that has nothing to do with encryption: who we are, what is
/// shown a moment after the start, the preferences window, the vendor's pages and support.
class QVAppDelegateBase : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString appName READ appName CONSTANT)
    Q_PROPERTY(QString vendorName READ vendorName CONSTANT)
    Q_PROPERTY(QString releaseString READ releaseString CONSTANT)
    Q_PROPERTY(QString StartupDocPathMessageString READ StartupDocPathMessageString WRITE
                   setStartupDocPathMessageString NOTIFY StartupDocPathMessageStringChanged)
    Q_PROPERTY(bool StartupDocSpecified READ StartupDocSpecified WRITE setStartupDocSpecified NOTIFY
                   StartupDocSpecifiedChanged)

public:
    explicit QVAppDelegateBase(AppSurroundings surroundings);
    ~QVAppDelegateBase() override;

    const QString &appName() const { return m_appName; }

    const QString &vendorName() const { return m_vendorName; }

    const QString &releaseString() const { return m_releaseString; }

    bool documentIsOpening() const { return m_documentIsOpening; }

    void setDocumentIsOpening(bool opening) { m_documentIsOpening = opening; }

    bool finishedLaunching() const { return m_finishedLaunching; }

    bool usingAServices() const { return m_usingAServices; }

    /// The status line of the startup document in the preferences window.
    const QString &StartupDocPathMessageString() const { return m_startupDocPathMessageString; }

    void setStartupDocPathMessageString(const QString &message);

    /// Whether a startup document is known; claimed until something shows that there is none.
    bool StartupDocSpecified() const { return m_startupDocSpecified; }

    void setStartupDocSpecified(bool specified);

    /// Adds what every application has to its menu, the first one of a menu bar.
    void adjustBeforeFinishingLaunching(QMenu &applicationMenu);
    /// Whether a start without a file begins with an untitled document.
    bool applicationShouldOpenUntitledFile() const;
    /// Asks for updates, and one second later carries out the chosen startup action.
    virtual void applicationDidFinishLaunching();
    /// Carries out the chosen startup action.
    void executeDocumentStartupAsInPref();
    void newDocIfNoDocOpened();
    void openDialogIfNoDocOpened();

    /// Extensions of what can be chosen as the startup document.
    virtual QStringList allowedStartupDocExtensions() const;
    void selectStartupDoc(); ///< Asks for one, in a sheet on the preferences window.
    void testOpenStartupDoc(); ///< Opens it as a start would, and says less where that fails.
    void showInFinderStartupDoc();
    void clearStartupSelectedDoc(); ///< The startup action stays as it is.
    void UseFrontDocumentAsStartupDoc(); ///< Does nothing, and is meant to.

    NSWindow *prefWindow() const { return m_prefWindow; } ///< Null until it is first needed.

    void openPreferences(); ///< On the panel that it had last.
    void openPreferencesAtSenderTagTab(qint64 tag); ///< The low 32 bits of \a tag count.
    void openPreferencesAtTab(qint32 panel); ///< Beyond the last panel: on the one it had.
    void restoreDefaults(); ///< Asks, and gives every setting its registered value again.

    static QString getAppStantment();
    QString getUserGuideName() const;
    void openUserGuide();
    bool isUserGuideInstalled() const;
    void openAbout();

    AboutWindow *aboutWindow() const { return m_aboutWindow.get(); } ///< Null until first opened.

    void visitUs();
    void webSite(); ///< The same as visitUs.
    void visitAppUrl();
    void visitTwitter();
    void twitter(); ///< The same as visitTwitter.
    void emailUs();
    void emailSupport(); ///< The same as emailUs.
    void checkForLastReleaseAvailable();

Q_SIGNALS:
    void StartupDocPathMessageStringChanged();
    void StartupDocSpecifiedChanged();
    void asksForUpdates(bool asks); ///< It begins to ask the update service, or is done with it.

protected:
    const AppSurroundings &surroundings() const { return m_surroundings; }

    NSUserDefaults &defaults() const { return m_surroundings.defaults; }

    NSDocumentController &documents() const { return m_surroundings.documents; }

    TimerFactory &timers() const { return m_surroundings.timers; }

    void setUsingAServices(bool uses) { m_usingAServices = uses; }

    void setPrefWindow(NSWindow *window, QVPrefToolbarDelegate *delegate);

    /// Makes the preferences window and sets it.
    virtual void loadPrefWindow() { }

private:
    struct ResolvedStartupDoc;

    bool mayOpenByItself() const;
    [[nodiscard]] std::unique_ptr<NSTimer> afterOneSecond(std::function<void()> step);
    ResolvedStartupDoc resolveStartupDoc() const;
    void writeStartupDocBookmark(const std::optional<QByteArray> &bookmark);
    void openStartupDoc();
    void sayNoStartupDoc();
    void sayStartupDocRefused();
    void askForPreferences(const NSAlert &alert);
    bool openIfAccessible(const std::optional<QString> &url);
    bool startAccess(const std::optional<QString> &url);
    bool preparePrefWindow();

    AppSurroundings m_surroundings;
    std::unique_ptr<NSTimer> m_startupTimer;
    std::unique_ptr<NSTimer> m_fallbackTimer;
    std::unique_ptr<AboutWindow> m_aboutWindow;
    NSWindow *m_prefWindow = nullptr;
    QPointer<QVPrefToolbarDelegate> m_prefToolbarDelegate;
    QString m_appName;
    QString m_vendorName;
    QString m_releaseString;
    QString m_startupDocPathMessageString;
    bool m_startupDocSpecified = true;
    bool m_finishedLaunching = false;
    bool m_usingAServices = false;
    bool m_documentIsOpening = false;
};

} // namespace quorvane
