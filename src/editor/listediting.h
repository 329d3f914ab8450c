#pragma once

#include <QObject>
#include <QTextListFormat>

#include <functional>

class QActionGroup;
class QKeyEvent;
class QMenu;
class QMouseEvent;
class QPainter;
class QPoint;
class QTextBlock;
class QTextCursor;

namespace quorvane {

class TextCommands;
class TextEditor;
enum class ListLook;

/// Lists: their commands, what keys do in them, the boxes of checklists, and marks that are typed.
class ListEditing final : public QObject
{
public:
    ListEditing(TextEditor &editor, TextCommands &commands);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Change = std::function<void(const QTextBlock &)>;

    void changeSelected(const QString &name, const Change &change);
    void toggle(ListLook look);
    void leaveLists(const QString &name);
    void toggleDone();
    void fillStyles(QMenu &menu);
    void addStyle(QMenu &menu, QActionGroup &group, const QString &title,
                  const QTextListFormat &style);
    void applyStyle(const QTextListFormat &style);

    bool pressKey(const QKeyEvent &event);
    bool pressTab(bool deeper);
    bool pressReturn();
    bool pressBackspace();
    bool pressSpace();
    bool mouse(const QMouseEvent &event);
    QTextBlock boxAt(const QPoint &place) const;
    void paint(QPainter &painter) const;

    TextEditor &m_editor;
    bool m_isOverBox = false;
};

} // namespace quorvane
