#pragma once

#include <QObject>
#include <QPointer>

class QMainWindow;
class QMenu;
class QWidget;

namespace quorvane {

class MenuItems;

/// The Edit menu. Its items act on the text of the window that had the keyboard last: the
/// document's, a note's, or that of a field, so that a password can be pasted by menu, too.
class EditMenu final : public QObject
{
    Q_OBJECT

public:
    /// What can be done with a text at this moment.
    struct Abilities
    {
        bool undo = false;
        bool redo = false;
        bool cut = false;
        bool copy = false;
        bool paste = false;
        bool remove = false;
        bool selectAll = false;
    };

    EditMenu(QMenu &menu, QMainWindow &window, MenuItems &items);

private:
    QWidget *text() const; // null where there is none to act on
    Abilities abilities() const;
    void deleteSelection();

    QMainWindow &m_window;
    QPointer<QWidget> m_last;
};

} // namespace quorvane
