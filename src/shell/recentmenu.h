#pragma once

#include "shell/mainmenu.h"

#include <QMenu>

namespace quorvane {

/// Opens a recent document. Where its file is gone that is told, and the entry can be removed.
void openRecentDocument(const QString &path, const MenuSurroundings &surroundings);

/// The recent documents as a submenu, listed anew whenever it opens.
class RecentMenu final : public QMenu
{
    Q_OBJECT

public:
    RecentMenu(QWidget &parent, const MenuSurroundings &surroundings);

private:
    void list();

    MenuSurroundings m_surroundings;
};

} // namespace quorvane
