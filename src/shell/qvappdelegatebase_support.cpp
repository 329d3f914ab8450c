#include "product/buildsettings.h"
#include "product/qvappsupportutility.h"
#include "shell/aboutwindow.h"
#include "shell/qvappdelegatebase.h"
#include "shell/qvpreftoolbardelegate.h"
#include "update/qvphonehome.h"

#include <QDir>
#include <QFileInfo>

namespace quorvane {

using namespace Qt::StringLiterals;

QString QVAppDelegateBase::getAppStantment()
{
    return u"The encryption visual editor for Mac"_s;
}

QString QVAppDelegateBase::getUserGuideName() const
{
    return u"%1 User Guide"_s.arg(m_appName);
}

namespace {

QString pathOfGuide(const QString &name)
{
    return QDir(buildsettings::guideFolder()).filePath(name + u".pdf"_s);
}

} // namespace

void QVAppDelegateBase::openUserGuide()
{
    m_surroundings.workspace.openFile(pathOfGuide(getUserGuideName()));
}

bool QVAppDelegateBase::isUserGuideInstalled() const
{
    return QFileInfo(pathOfGuide(getUserGuideName())).isFile();
}

void QVAppDelegateBase::openAbout()
{
    if (!m_aboutWindow) {
        m_aboutWindow = std::make_unique<AboutWindow>(*this);
        m_aboutWindow->setPlatformWindow(m_surroundings.adaptWindow(*m_aboutWindow));
    }
    m_aboutWindow->openAbout();
}

void QVAppDelegateBase::visitUs()
{
    QVAppSupportUtility::visitUs(m_surroundings.workspace);
}

void QVAppDelegateBase::webSite()
{
    visitUs();
}

void QVAppDelegateBase::visitAppUrl()
{
    QVAppSupportUtility::visitAppUrl(m_surroundings.workspace);
}

void QVAppDelegateBase::visitTwitter()
{
    QVAppSupportUtility::visitTwitter(m_surroundings.workspace);
}

void QVAppDelegateBase::twitter()
{
    visitTwitter();
}

void QVAppDelegateBase::emailUs()
{
    QVAppSupportUtility::emailUs(m_surroundings.workspace);
}

void QVAppDelegateBase::emailSupport()
{
    emailUs();
}

void QVAppDelegateBase::checkForLastReleaseAvailable()
{
    m_surroundings.phoneHome.checkForLastReleaseAvailableWithNotify();
}

} // namespace quorvane
