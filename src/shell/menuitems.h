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
    void validate();

    static MenuItemState alwaysEnabled() { return {true, {}, {}}; }

private:
    struct Item
    {
        QAction *action;
        State state;
    };

    std::vector<Item> m_items;
};

} // namespace quorvane
