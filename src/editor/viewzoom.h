#pragma once

#include <QObject>

namespace quorvane {

class TextCommands;
class TextEditor;

/// Shows the text larger or smaller, in steps: by command or by the wheel with Ctrl.
class ViewZoom final : public QObject
{
public:
    ViewZoom(TextEditor &editor, TextCommands &commands);

private:
    void zoomBy(int steps);

    TextEditor &m_editor;
    TextCommands &m_commands;
};

} // namespace quorvane
