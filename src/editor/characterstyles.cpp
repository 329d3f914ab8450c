#include "editor/characterstyles.h"

#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace quorvane {

CharacterStyles::CharacterStyles(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
{
    const auto add = [&](TextCommand command, const QString &name, auto isOn, auto set) {
        const auto on = [this, isOn] {
            const QTextCharFormat format = m_editor.currentCharFormat();
            return isOn(format.font().resolve(m_editor.document()->defaultFont()));
        };
        commands.define(
            command,
            [this, name, on, set] {
                QTextCharFormat format;
                set(format, !on());
                m_editor.applyCharFormat(format, name);
                m_editor.setFocus();
            },
            [this, on] {
                return MenuItemState {!m_editor.isReadOnly(), {}, on()};
            });
    };
    add(
        TextCommand::Bold, u"Bold"_s, [](const QFont &font) { return font.bold(); },
        [](QTextCharFormat &format, bool on) {
            format.setFontWeight(on ? QFont::Bold : QFont::Normal);
        });
    add(
        TextCommand::Italic, u"Italic"_s, [](const QFont &font) { return font.italic(); },
        [](QTextCharFormat &format, bool on) { format.setFontItalic(on); });
    add(
        TextCommand::Underline, u"Underline"_s, [](const QFont &font) { return font.underline(); },
        [](QTextCharFormat &format, bool on) { format.setFontUnderline(on); });
}

} // namespace quorvane
