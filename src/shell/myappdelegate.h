#pragma once

#include "shell/qvappdelegatebase.h"

class QComboBox;

namespace quorvane {

class PreferencesWindow;

/// The application delegate of this program. Once the application has been in the background for
/// the time that the user has chosen, it locks the open documents.
class MyAppDelegate final : public QVAppDelegateBase
{
    Q_OBJECT

public:
    explicit MyAppDelegate(AppSurroundings surroundings);
    ~MyAppDelegate() override;

    /// Registers the settings' default values and tells the update check who asks; before
    /// everything else of the program's own.
    static void initialize(NSUserDefaults &defaults, QVPhoneHome &phoneHome);

    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching() override;
    /// Lists the machine's fonts in the pop-ups, as plain comparison orders them.
    void buildUpFontMenuAndBindProgrammatically();
    QStringList allowedStartupDocExtensions() const override;

    PreferencesWindow *preferencesWindow() const { return m_preferences.get(); }

    /// Makes a new document for another program, which handed over a text, or something else. The
    /// text does not reach the document. \return what is wrong, for the caller.
    std::optional<QString> doCreateDocWithText(const std::optional<QString> &text);

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

protected:
    void loadPrefWindow() override;

private:
    void selectFonts();

    std::unique_ptr<PreferencesWindow> m_preferences;
    QComboBox *m_myFontPopup = nullptr; // there with the preferences window, as is the next one
    QComboBox *m_myFontPopupForPublicNote = nullptr;
    std::unique_ptr<NSTimer> m_repeatingAutomaticLockTimer; // in spite of its name it fires once
};

} // namespace quorvane
