#include "shell/myappdelegate.h"

#include "document/mydocument.h"
#include "product/buildsettings.h"
#include "product/release.h"
#include "product/settings.h"
#include "shell/aboutwindow.h"
#include "shell/accessiblewindow.h"
#include "shell/mypreftoolbardelegate.h"
#include "shell/preferenceswindow.h"
#include "update/qvphonehome.h"
#include "util/valuetransformers.h"

#include <QComboBox>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 shortestLockDelay = 30; // seconds

void selectTitle(QComboBox *popup, const QString &title)
{
    if (popup) {
        popup->setCurrentIndex(popup->findText(title, Qt::MatchExactly));
    }
}

} // namespace

MyAppDelegate::MyAppDelegate(AppSurroundings surroundings)
    : QVAppDelegateBase(std::move(surroundings))
{
    tellOfAccessibleWindows();
    NSValueTransformer::setValueTransformer(
        std::make_unique<QVValueIsEqualToStr>(u"Open Selected Document"_s), u"valueIsOpSelDoc"_s);
}

MyAppDelegate::~MyAppDelegate() = default;

void MyAppDelegate::initialize(NSUserDefaults &defaults, QVPhoneHome &phoneHome)
{
    defaults.registerDefaults(settings::registeredDefaults());
    const QStringList urls = buildsettings::updateUrls();
    phoneHome.SetValueAppRelease(releaseNumber, productName, urls[0], urls[1], urls[2], urls[3]);
}

void MyAppDelegate::applicationWillFinishLaunching()
{
    buildUpFontMenuAndBindProgrammatically();
}

void MyAppDelegate::applicationDidFinishLaunching()
{
    selectFonts();
    QVAppDelegateBase::applicationDidFinishLaunching();
}

void MyAppDelegate::buildUpFontMenuAndBindProgrammatically()
{
    if (!m_myFontPopup) {
        return;
    }
    QStringList families = surroundings().fontManager.availableFontFamilies();
    std::sort(families.begin(), families.end()); // no locale, and capitals first
    for (QComboBox *popup : {m_myFontPopup, m_myFontPopupForPublicNote}) {
        popup->clear();
        popup->addItems(families);
    }
}

void MyAppDelegate::selectFonts()
{
    selectTitle(m_myFontPopup, defaults().value(settings::startupFontFamily));
    selectTitle(m_myFontPopupForPublicNote, defaults().value(settings::publicNoteFontFamily));
}

QStringList MyAppDelegate::allowedStartupDocExtensions() const
{
    return {documentExtension};
}

// What a launch does with the window's parts is done now, for it was not there at the launch.
void MyAppDelegate::loadPrefWindow()
{
    m_preferences =
        std::make_unique<PreferencesWindow>(*this, defaults(), surroundings().adaptWindow);
    m_myFontPopup = m_preferences->fontPopups().ofDocuments;
    m_myFontPopupForPublicNote = m_preferences->fontPopups().ofPublicNote;
    buildUpFontMenuAndBindProgrammatically();
    selectFonts();
    setPrefWindow(m_preferences->platformWindow(), m_preferences->toolbarDelegate());
}

std::optional<QString> MyAppDelegate::doCreateDocWithText(const std::optional<QString> &text)
{
    setUsingAServices(true);
    if (!text) {
        return u"Error: Pasteboard doesn't contain a string."_s;
    }
    documents().newDocument();
    const std::vector<NSDocument *> open = documents().documents();
    if (auto *document = qobject_cast<MyDocument *>(open.empty() ? nullptr : open.back())) {
        document->setContentAsText(*text);
    }
    return std::nullopt;
}

void MyAppDelegate::applicationDidResignActive()
{
    if (!defaults().value(settings::autolocBackgroundEnabled)) {
        return;
    }
    // The low 32 bits count, whatever stands above them.
    setAutomaticLockWithTimeInterval(
        static_cast<qint32>(defaults().value(settings::autolocBackgroundInterval)));
}

void MyAppDelegate::applicationDidBecomeActive()
{
    setAutomaticLockWithTimeInterval(0);
}

void MyAppDelegate::setAutomaticLockWithTimeInterval(qint32 seconds)
{
    if (m_repeatingAutomaticLockTimer) {
        m_repeatingAutomaticLockTimer->invalidate();
    }
    if (seconds < 1) {
        m_repeatingAutomaticLockTimer.reset();
        return;
    }
    m_repeatingAutomaticLockTimer = timers().scheduledTimer(
        std::max(seconds, shortestLockDelay), [this] { AutomaticLockAllOpenedDocuments(); });
}

void MyAppDelegate::AutomaticLockAllOpenedDocuments()
{
    for (NSDocument *each : documents().documents()) {
        if (auto *document = qobject_cast<MyDocument *>(each)) {
            document->lockAutomatically();
        }
    }
}

} // namespace quorvane
