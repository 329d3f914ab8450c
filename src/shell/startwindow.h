#pragma once

#include "shell/mainmenu.h"

#include <QMainWindow>

namespace quorvane {

class RecentList;

/// What the program shows while it has no document: the ways to one, and the program's menus.
class StartWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit StartWindow(const MenuSurroundings &surroundings);

Q_SIGNALS:
    void closed(); ///< By the user.

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *newHeader();
    QWidget *newButtons();

    MenuSurroundings m_surroundings;
    RecentList *m_recents;
};

} // namespace quorvane
