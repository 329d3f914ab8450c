#pragma once

#include "shell/qvappdelegatebase.h"

namespace quorvane {

/// The application delegate of this program. Once the application has been in the background for
/// the time that the user has chosen, it locks the open documents.
class MyAppDelegate final : public QVAppDelegateBase
{
    Q_OBJECT

public:
    using QVAppDelegateBase::QVAppDelegateBase;

    /// Registers the settings' default values; before everything else of the program's own.
    static void initialize(NSUserDefaults &defaults);

    /// Arms the automatic lock where the user wants it. The settings are read here only.
    void applicationDidResignActive();
    void applicationDidBecomeActive();
    /// Below one second there is no lock, and none comes before half a minute has passed.
    void setAutomaticLockWithTimeInterval(qint32 seconds);
    /// Each document decides for itself whether it can be locked; the locks run from the main
    /// queue.
    void AutomaticLockAllOpenedDocuments();

    /// The timer that was scheduled last, fired or not; null where there is none.
    const NSTimer *repeatingAutomaticLockTimer() const
    {
        return m_repeatingAutomaticLockTimer.get();
    }

private:
    std::unique_ptr<NSTimer> m_repeatingAutomaticLockTimer; // in spite of its name it fires once
};

} // namespace quorvane
