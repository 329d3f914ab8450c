#include "shell/menuitems.h"

#include <QAction>
#include <QMenu>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace quorvane {

QAction *MenuItems::add(QMenu &menu, const QString &title, const QKeySequence &shortcut,
                        std::function<void()> run, State state)
{
    QAction *action = menu.addAction(title);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, [this, run = std::move(run), state] {
        const QPointer<MenuItems> self(this); // the item may close its window
        if (state().enabled) {
            run();
        }
        if (self) {
            self->validate();
        }
    });
    m_items.push_back({action, std::move(state)});
    return action;
}

QMenu *MenuItems::addSubmenu(QMenu &menu, const QString &title)
{
    m_submenus.push_back(menu.addMenu(title));
    return m_submenus.back();
}

void MenuItems::validate()
{
    for (const Item &item : m_items) {
        const MenuItemState state = item.state();
        item.action->setEnabled(state.enabled);
        if (state.title) {
            item.action->setText(*state.title);
        }
        item.action->setCheckable(state.on.has_value());
        item.action->setChecked(state.on.value_or(false));
    }
    for (const QMenu *submenu : m_submenus) {
        const QList<QAction *> actions = submenu->actions();
        submenu->menuAction()->setEnabled(
            std::any_of(actions.begin(), actions.end(),
                        [](const QAction *action) { return action->isEnabled(); }));
    }
}

} // namespace quorvane
