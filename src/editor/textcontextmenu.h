#pragma once

#include <QObject>
#include <QTextCursor>

#include <functional>
#include <vector>

class QMenu;
class QPoint;

namespace quorvane {

class TextCommands;
class TextEditor;

/// The menu of a right click or the menu key on a text. Tools add what they have to say of the
/// place, in the order in which they were made; the usual commands follow.
class TextContextMenu final : public QObject
{
public:
    /// \a at is where the menu was asked for; the caret of the editor may be elsewhere in a
    /// selection.
    using Section = std::function<void(QMenu &menu, const QTextCursor &at)>;

    TextContextMenu(TextEditor &editor, TextCommands &commands);

    void addSection(Section section);

private:
    void open(const QPoint &place, const QPoint &screenPlace);
    void addUsual(QMenu &menu);

    TextEditor &m_editor;
    TextCommands &m_commands;
    std::vector<Section> m_sections;
};

} // namespace quorvane
