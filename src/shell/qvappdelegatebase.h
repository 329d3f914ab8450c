#pragma once

#include "platform/nsdocumentcontroller.h"
#include "platform/nstimer.h"
#include "platform/nsuserdefaults.h"

#include <memory>

namespace quorvane {

/// The part of the application delegate that has nothing to do with encryption: who we are, and
/// what is shown a moment after the start.
class QVAppDelegateBase : public QObject
{
    Q_OBJECT

public:
    QVAppDelegateBase(NSUserDefaults &defaults, NSDocumentController &documents,
                      TimerFactory &timers);

    const QString &appName() const { return m_appName; }

    const QString &vendorName() const { return m_vendorName; }

    const QString &releaseString() const { return m_releaseString; }

    bool documentIsOpening() const { return m_documentIsOpening; }

    void setDocumentIsOpening(bool opening) { m_documentIsOpening = opening; }

    /// Whether a start without a file begins with an untitled document.
    bool applicationShouldOpenUntitledFile() const;
    virtual void applicationDidFinishLaunching();
    /// Carries out the chosen startup action, one second after the launch.
    void executeDocumentStartupAsInPref();
    void newDocIfNoDocOpened();
    void openDialogIfNoDocOpened();

protected:
    NSUserDefaults &defaults() const { return m_defaults; }

    NSDocumentController &documents() const { return m_documents; }

    TimerFactory &timers() const { return m_timers; }

private:
    bool mayOpenByItself() const;
    [[nodiscard]] std::unique_ptr<NSTimer> afterOneSecond(std::function<void()> step);

    NSUserDefaults &m_defaults;
    NSDocumentController &m_documents;
    TimerFactory &m_timers;
    std::unique_ptr<NSTimer> m_startupTimer;
    std::unique_ptr<NSTimer> m_fallbackTimer;
    QString m_appName;
    QString m_vendorName;
    QString m_releaseString;
    bool m_documentIsOpening = false;
};

} // namespace quorvane
