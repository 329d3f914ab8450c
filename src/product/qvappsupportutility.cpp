#include "product/qvappsupportutility.h"

#include "product/release.h"

#include <QStringList>
#include <QSysInfo>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// What RFC 3986 lets stand in a query as it is, beside the unreserved characters.
constexpr char allowedInQuery[] = "!$&'()*+,;=:@/?";

QString withoutLeadingZero(const QString &pair)
{
    return pair.startsWith(u'0') ? pair.mid(1) : pair;
}

} // namespace

QString QVAppSupportUtility::calcReleaseString(qint64 release)
{
    const QString digits = QString::number(release);
    const qsizetype count = digits.size();
    if (count < 4) {
        return u""_s;
    }
    QStringList parts;
    if (count == 4) {
        parts = {digits.left(1), digits.mid(1, 1), digits.right(2)};
    } else {
        parts = {digits.left(count - 4), withoutLeadingZero(digits.mid(count - 4, 2)),
                 withoutLeadingZero(digits.right(2))};
    }
    QString result = parts.join(u'.');
    if (result.endsWith(".0"_L1)) {
        result.chop(2);
    }
    return result;
}

void QVAppSupportUtility::visitUs(NSWorkspace &workspace)
{
    workspace.openURL(QUrl(QStringLiteral(QUORVANE_HOME_PAGE)));
}

void QVAppSupportUtility::visitAppUrl(NSWorkspace &workspace)
{
    workspace.openURL(QUrl(QStringLiteral(QUORVANE_PRODUCT_PAGE)));
}

void QVAppSupportUtility::visitTwitter(NSWorkspace &workspace)
{
    workspace.openURL(QUrl(QStringLiteral(QUORVANE_TWITTER_PAGE)));
}

void QVAppSupportUtility::emailUs(NSWorkspace &workspace)
{
    const QString subject = u"Support Request for %1 rel. %2 - macOS %3"_s.arg(
        productName, calcReleaseString(releaseNumber), QSysInfo::prettyProductName());
    const QByteArray encoded = QUrl::toPercentEncoding(subject, allowedInQuery);
    workspace.openURL(QUrl(u"mailto:%1?subject=%2"_s.arg(QStringLiteral(QUORVANE_SUPPORT_ADDRESS),
                                                         QString::fromLatin1(encoded))));
}

void QVAppSupportUtility::emailArdelis(NSWorkspace &workspace)
{
    emailUs(workspace);
}

void QVAppSupportUtility::visitArdelis(NSWorkspace &workspace)
{
    visitUs(workspace);
}

void QVAppSupportUtility::sayFilecreatedWithANewerVersion(ModalAlerts &alerts,
                                                          NSWorkspace &workspace,
                                                          const std::function<void(bool)> &answered)
{
    const NSAlert alert {
        u"The document you requested to open was created with a more recent version of this application"_s,
        u"To open this file you need a release of this application equal or successive to the one "
        u"used to "
        "create this file.\n\nProbably you are using an outdated release.\nYou can download for "
        "free the "
        "last version of this application from our site"_s,
        {u"Go to Download Last Version"_s, u"Cancel"_s},
    };
    sayNewer(alert, alerts, workspace, answered);
}

void QVAppSupportUtility::dataIn_ApplicationSupportFolder_CreatedWithANewerVersion(
    ModalAlerts &alerts, NSWorkspace &workspace, const std::function<void(bool)> &answered)
{
    const NSAlert alert {
        u"Data file the software tryed to open from the Application Support folder was created with a more recent version of this application"_s,
        u"You need a release of this application equal or successive to the one used to create "
        u"this data file.\n\nPlease use a more recent version of this application"_s,
        {u"Go to Download Last Version"_s, u"Cancel"_s},
    };
    sayNewer(alert, alerts, workspace, answered);
}

void QVAppSupportUtility::sayNewer(const NSAlert &alert, ModalAlerts &alerts,
                                   NSWorkspace &workspace,
                                   const std::function<void(bool)> &answered)
{
    alerts.runModal(alert, [&workspace, answered](AlertAnswer answer) {
        if (answer == AlertAnswer::First) {
            visitArdelis(workspace);
        }
        if (answered) {
            answered(answer == AlertAnswer::First);
        }
    });
}

} // namespace quorvane
