#include "shell/recentmenu.h"

#include "platform/nsalert.h"
#include "platform/nsdocumentcontroller.h"
#include "platform/recentdocuments.h"
#include "shell/shownpath.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {
constexpr int partWidth = 40; // average characters
} // namespace

void openRecentDocument(const QString &path, const MenuSurroundings &surroundings)
{
    if (surroundings.recents.isThere(path)) {
        surroundings.documents.openDocumentWithContentsOfURL(path);
        return;
    }
    const NSAlert alert {
        u"“%1” could not be found."_s.arg(shownName(path)),
        u"There is no such file any more:\n%1\n\nIt may have been moved, renamed or deleted, or it lies on a disk that is not connected."_s
            .arg(path),
        {u"Remove from Recent Documents"_s, u"Cancel"_s},
    };
    surroundings.alerts.runModal(alert,
                                 [recents = &surroundings.recents, path](AlertAnswer answer) {
                                     if (answer == AlertAnswer::First) {
                                         recents->remove(path);
                                     }
                                 });
}

RecentMenu::RecentMenu(QWidget &parent, const MenuSurroundings &surroundings)
    : QMenu(u"Open &Recent"_s, &parent)
    , m_surroundings(surroundings)
{
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, &RecentMenu::list);
}

void RecentMenu::list()
{
    clear();
    const QStringList paths = m_surroundings.recents.paths();
    for (const QString &path : paths) {
        const int width = partWidth * fontMetrics().averageCharWidth();
        const QString name = fontMetrics().elidedText(shownName(path), Qt::ElideMiddle, width);
        const QString folder = fontMetrics().elidedText(shownFolder(path), Qt::ElideMiddle, width);
        QAction *item = addAction(withoutMnemonic(name + u" — "_s + folder));
        item->setToolTip(path.toHtmlEscaped());
        connect(item, &QAction::triggered, this,
                [this, path] { openRecentDocument(path, m_surroundings); });
    }
    if (paths.isEmpty()) {
        addAction(u"No Recent Documents"_s)->setEnabled(false);
    }
    addSeparator();
    QAction *clearing = addAction(u"&Clear Menu"_s);
    clearing->setEnabled(!paths.isEmpty());
    connect(clearing, &QAction::triggered, this, [this] { m_surroundings.recents.clear(); });
}

} // namespace quorvane
