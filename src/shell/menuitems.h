#pragma once

#include "document/documentaction.h"

#include <QKeySequence>
#include <QObject>

#include <functional>
#include <vector>

class QAction;
class QMenu;

namespace quorvane {

/// The items of a menu bar. How each one stands is asked anew whenever it counts, so that an item
/// that looks enabled and is not does nothing.
class MenuItems final : public QObject
{
    Q_OBJECT

public:
    using State = std::function<MenuItemState()>;

    using QObject::QObject;

    QAction *add(QMenu &menu, const QString &title, const QKeySequence &shortcut,
                 std::function<void()> run, State state = alwaysEnabled);
    /// A submenu that opens only where one of its items is enabled.
    QMenu *addSubmenu(QMenu &menu, const QString &title);
    void validate();

    static MenuItemState alwaysEnabled() { return {true, {}, {}}; }

private:
    struct Item
    {
        QAction *action;
        State state;
    };

    std::vector<Item> m_items;
    std::vector<QMenu *> m_submenus;
};

} // namespace quorvane
