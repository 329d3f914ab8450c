#pragma once

#include "platform/nsalert.h"
#include "platform/nsuserdefaults.h"
#include "platform/nsworkspace.h"
#include "platform/urlloader.h"
#include "update/updaterecord.h"

#include <QDateTime>

#include <functional>
#include <memory>
#include <utility>

namespace quorvane {

/// Tells the user that a newer release exists. It downloads and installs nothing.
class QVPhoneHome final
{
public:
    /// What a check asks of the world around it.
    struct Surroundings
    {
        NSUserDefaults &defaults;
        ModalAlerts &alerts;
        NSWorkspace &workspace;
        URLLoader &loader;
        BackgroundQueue &queue;
        std::function<QDateTime()> now; ///< In the user's time zone.
    };

    explicit QVPhoneHome(Surroundings surroundings);
    ~QVPhoneHome();
    QVPhoneHome(const QVPhoneHome &) = delete;
    QVPhoneHome &operator=(const QVPhoneHome &) = delete;

    bool isChekingUpdateSystem() const { return m_isChekingUpdateSystem; }

    /// \a asks is told when the service begins to be asked (true), and when it has answered or
    /// failed to.
    void setAsks(std::function<void(bool)> asks) { m_asks = std::move(asks); }

    void SetValueAppRelease(qint64 release, const QString &appName, const QString &plistUrl1,
                            const QString &plistUrl2, const QString &plistUrl3,
                            const QString &plistUrl4);

    /// The check of a launch: at most one fetch that works on a calendar day. \a launched runs when
    /// the user has answered what it asked at once, if anything.
    void startupProcedure(const std::function<void()> &launched = {});

    // Each does nothing while a check is in progress; the daily ones nothing more today either.
    void checkForLastReleaseAvailableWithNotify(); ///< Tells every outcome.
    void dailyVerboseCheckForLastReleaseAvailable(); ///< Tells of a newer release alone.
    void dailySilentCheckForLastReleaseAvailable();
    void silentCheckForLastReleaseAvailable();

    bool lastCheckNotToday() const;
    void setInPreferencesTodayWasChecked();
    /// The record of the first endpoint that gives one. It blocks, and runs off the main thread.
    std::optional<UpdateRecord> getDictionaryFromTheNet() const;

    void notifyAboutUpdateAvailable(const UpdateRecord &record);
    void notifyAboutYourAppIsLastAvailable(const UpdateRecord &record);
    void notifyAboutFailedChechForUpdate();
    /// Offers one check where none has worked for more than 90 days. \a answered as in
    /// startupProcedure.
    void inCaseInviteToCheckForLastReleaseAvailable(const std::function<void()> &answered = {});

private:
    void checkForLastReleaseAvailable(bool notifyAvailable, bool notifyNotAvailable);
    void checked(const std::optional<UpdateRecord> &record, bool notifyAvailable,
                 bool notifyNotAvailable);
    void tellWhetherItAsks(bool asks) const;
    void open(const QString &url) const;
    void tell(const NSAlert &alert, const std::function<void(AlertAnswer)> &answered);

    Surroundings m_surroundings;
    qint64 m_myAppRelease = 0;
    QString m_myAppName;
    QStringList m_myPlistUrls;
    bool m_isChekingUpdateSystem = false;
    std::function<void(bool)> m_asks;
    std::shared_ptr<const int> m_life = std::make_shared<const int>(); // watched by completions
};

} // namespace quorvane
