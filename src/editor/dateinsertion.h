#pragma once

#include <QDateTime>

#include <functional>

class QMenu;

namespace quorvane {

class TextCommands;
class TextEditor;

/// Inserts the present date and time, in the form that is chosen from a menu.
class DateInsertion final
{
public:
    using Clock = std::function<QDateTime()>;

    DateInsertion(
        TextEditor &editor, TextCommands &commands,
        Clock clock = [] { return QDateTime::currentDateTime(); });

private:
    void fill(QMenu &menu);

    TextEditor &m_editor;
    Clock m_clock;
};

} // namespace quorvane
