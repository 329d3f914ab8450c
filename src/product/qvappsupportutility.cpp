#include "product/qvappsupportutility.h"

#include <QStringList>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

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
