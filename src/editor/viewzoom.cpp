#include "editor/viewzoom.h"

#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace quorvane {

namespace {

constexpr std::array steps {0.25, 0.33, 0.5, 0.67, 0.75, 0.8, 0.9, 1.0, 1.1, 1.25,
                            1.5,  1.75, 2.0, 2.5,  3.0,  3.5, 4.0, 4.5, 5.0};

} // namespace

ViewZoom::ViewZoom(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
    , m_commands(commands)
{
    const auto where = [this](auto mayZoom) {
        return [this, mayZoom] {
            return MenuItemState {mayZoom(m_editor.zoom()), {}, {}};
        };
    };
    commands.define(
        TextCommand::ZoomIn, [this] { zoomBy(1); },
        where([](double zoom) { return zoom < steps.back(); }));
    commands.define(
        TextCommand::ZoomOut, [this] { zoomBy(-1); },
        where([](double zoom) { return zoom > steps.front(); }));
    commands.define(
        TextCommand::ActualSize, [this] { m_editor.setZoom(1); },
        where([](double zoom) { return zoom != 1; }));
    connect(&editor, &TextEditor::zoomAsked, this, &ViewZoom::zoomBy);
    connect(&editor, &TextEditor::zoomChanged, &commands, &TextCommands::validateLater);
}

void ViewZoom::zoomBy(int count)
{
    const auto at = std::lower_bound(steps.begin(), steps.end(), m_editor.zoom());
    const auto index =
        std::clamp<std::ptrdiff_t>(at - steps.begin() + count, 0, std::ssize(steps) - 1);
    m_editor.setZoom(steps.at(static_cast<size_t>(index)));
}

} // namespace quorvane
