#include "update/qvphonehome.h"

#include "product/qvappsupportutility.h"
#include "product/settings.h"

#include <QUrl>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int invitationDays = 90;
constexpr qint64 invitationSpan = 7'776'000'000; // milliseconds

std::optional<UpdateRecord> firstRecordOf(URLLoader &loader, const QStringList &urls)
{
    for (const QString &url : urls) {
        const std::optional<QByteArray> data = loader.contentsOfURL(url);
        if (std::optional<UpdateRecord> record =
                data ? UpdateRecord::fromData(*data) : std::nullopt) {
            return record;
        }
    }
    return std::nullopt;
}

} // namespace

QVPhoneHome::QVPhoneHome(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
{ }

QVPhoneHome::~QVPhoneHome() = default;

void QVPhoneHome::SetValueAppRelease(qint64 release, const QString &appName,
                                     const QString &plistUrl1, const QString &plistUrl2,
                                     const QString &plistUrl3, const QString &plistUrl4)
{
    m_myAppRelease = release;
    m_myAppName = appName;
    m_myPlistUrls = {plistUrl1, plistUrl2, plistUrl3, plistUrl4};
}

void QVPhoneHome::startupProcedure(const std::function<void()> &launched)
{
    if (m_surroundings.defaults.value(settings::notifyUpdate)) {
        dailyVerboseCheckForLastReleaseAvailable();
        if (launched) {
            launched();
        }
        return;
    }
    dailySilentCheckForLastReleaseAvailable();
    inCaseInviteToCheckForLastReleaseAvailable(launched);
}

void QVPhoneHome::checkForLastReleaseAvailableWithNotify()
{
    if (!m_isChekingUpdateSystem) {
        checkForLastReleaseAvailable(true, true);
    }
}

void QVPhoneHome::dailyVerboseCheckForLastReleaseAvailable()
{
    if (!m_isChekingUpdateSystem && lastCheckNotToday()) {
        checkForLastReleaseAvailable(true, false);
    }
}

void QVPhoneHome::dailySilentCheckForLastReleaseAvailable()
{
    if (!m_isChekingUpdateSystem && lastCheckNotToday()) {
        checkForLastReleaseAvailable(false, false);
    }
}

void QVPhoneHome::silentCheckForLastReleaseAvailable()
{
    if (!m_isChekingUpdateSystem) {
        checkForLastReleaseAvailable(false, false);
    }
}

// Calendar days count, not spans of 24 hours.
bool QVPhoneHome::lastCheckNotToday() const
{
    const QDateTime last =
        m_surroundings.defaults.objectForKey(settings::lastCheckDateForUpdate).toDateTime();
    return !last.isValid()
        || last.toLocalTime().date() != m_surroundings.now().toLocalTime().date();
}

void QVPhoneHome::setInPreferencesTodayWasChecked()
{
    m_surroundings.defaults.setObject(settings::lastCheckDateForUpdate, m_surroundings.now());
}

std::optional<UpdateRecord> QVPhoneHome::getDictionaryFromTheNet() const
{
    return firstRecordOf(m_surroundings.loader, m_myPlistUrls);
}

void QVPhoneHome::checkForLastReleaseAvailable(bool notifyAvailable, bool notifyNotAvailable)
{
    m_isChekingUpdateSystem = true;
    tellWhetherItAsks(true);
    const auto record = std::make_shared<std::optional<UpdateRecord>>();
    m_surroundings.queue.addOperation(
        // On its own thread, so that it may see nothing of this object.
        [record, &loader = m_surroundings.loader, urls = m_myPlistUrls] {
            *record = firstRecordOf(loader, urls);
        },
        [this, record, notifyAvailable, notifyNotAvailable, life = std::weak_ptr(m_life)] {
            if (life.lock()) {
                checked(*record, notifyAvailable, notifyNotAvailable);
            }
        });
}

void QVPhoneHome::checked(const std::optional<UpdateRecord> &record, bool notifyAvailable,
                          bool notifyNotAvailable)
{
    tellWhetherItAsks(false);
    if (!record) {
        if (notifyNotAvailable) {
            notifyAboutFailedChechForUpdate();
            return;
        }
        m_isChekingUpdateSystem = false;
        return;
    }
    // The day counts as checked whatever the record says.
    setInPreferencesTodayWasChecked();
    const bool isNewer = record->lra && *record->lra > m_myAppRelease;
    if (isNewer && notifyAvailable) {
        notifyAboutUpdateAvailable(*record);
    } else if (record->lra && !isNewer && notifyNotAvailable) {
        notifyAboutYourAppIsLastAvailable(*record);
    } else {
        m_isChekingUpdateSystem = false;
    }
}

// The check is over when its alert is gone.
void QVPhoneHome::tell(const NSAlert &alert, const std::function<void(AlertAnswer)> &answered)
{
    m_surroundings.alerts.runModal(
        alert, [this, answered, life = std::weak_ptr(m_life)](AlertAnswer answer) {
            if (!life.lock()) {
                return;
            }
            m_isChekingUpdateSystem = false;
            answered(answer);
        });
}

void QVPhoneHome::notifyAboutUpdateAvailable(const UpdateRecord &record)
{
    const NSAlert alert {
        u"There is an update available for %1"_s.arg(m_myAppName),
        u"You are using release: %1\nLatest available release is: %2\nMirando recommends to use always the latest release"_s
            .arg(QVAppSupportUtility::calcReleaseString(m_myAppRelease),
                 QVAppSupportUtility::calcReleaseString(record.lra.value_or(0))),
        {u"Download Update"_s, u"Download Page"_s, u"Later"_s},
    };
    tell(alert, [this, record](AlertAnswer answer) {
        if (answer == AlertAnswer::First) {
            open(record.gfu);
        } else if (answer == AlertAnswer::Second) {
            open(record.dpu);
        }
    });
}

void QVPhoneHome::notifyAboutYourAppIsLastAvailable(const UpdateRecord &record)
{
    const NSAlert alert {
        u"%1 is up to date"_s.arg(m_myAppName),
        u"You are using the latest available release.\nIf you like, you can go to the Mirando download page to manually check it.\n\nVisit us and see all the macOS software we have available.\nWe are one of the developers in the world with more macOS apps!\n"_s,
        {u"Go to Mirando Download Page"_s, u"Close"_s},
    };
    tell(alert, [this, record](AlertAnswer answer) {
        if (answer == AlertAnswer::First) {
            open(record.dpu);
        }
    });
}

void QVPhoneHome::notifyAboutFailedChechForUpdate()
{
    const NSAlert alert {
        u"%1 was not able to connect to the Mirando server"_s.arg(m_myAppName),
        u"It was not possible to enstablish a internet connection on the net with the Mirando upgrade server. Check your internet connection or try later."_s,
        {u"OK"_s},
    };
    tell(alert, [](AlertAnswer) {});
}

void QVPhoneHome::inCaseInviteToCheckForLastReleaseAvailable(const std::function<void()> &answered)
{
    const QDateTime last =
        m_surroundings.defaults.objectForKey(settings::lastCheckDateForUpdate).toDateTime();
    if (last.isValid() && last.msecsTo(m_surroundings.now()) <= invitationSpan) {
        if (answered) {
            answered();
        }
        return;
    }
    const QString question =
        u"Would you like that %1 informs you now for any available update?"_s.arg(m_myAppName);
    NSAlert alert {
        last.isValid()
            ? u"It is more then %1 days this app doesn't report to you for updates.\n"_s.arg(
                  invitationDays)
                + question
            : question,
        u""_s,
        {u"OK"_s, u"Mirando Site"_s, u"Cancel"_s},
    };
    if (!m_surroundings.defaults.value(settings::notifyUpdate)) {
        alert.informativeText =
            u"Suggested option is to have the update report enabled.\nUse the Preference Dialog to enable this feature."_s;
        alert.alertStyle = NSAlertStyle::Warning;
    }
    const auto onAnswer = [this, answered, life = std::weak_ptr(m_life)](AlertAnswer answer) {
        if (!life.lock()) {
            return;
        }
        if (answer == AlertAnswer::First) {
            checkForLastReleaseAvailableWithNotify();
        } else if (answer == AlertAnswer::Second) {
            QVAppSupportUtility::visitUs(m_surroundings.workspace);
        }
        // Also while the check that was just begun is running: it holds back no further request.
        m_isChekingUpdateSystem = false;
        if (answered) {
            answered();
        }
    };
    m_surroundings.alerts.runModal(alert, onAnswer);
}

void QVPhoneHome::tellWhetherItAsks(bool asks) const
{
    if (m_asks) {
        m_asks(asks);
    }
}

// What a record names is opened only where it is a web address.
void QVPhoneHome::open(const QString &url) const
{
    const QUrl address(url, QUrl::StrictMode);
    if (address.isValid() && (address.scheme() == "http"_L1 || address.scheme() == "https"_L1)) {
        m_surroundings.workspace.openURL(address);
    }
}

} // namespace quorvane
