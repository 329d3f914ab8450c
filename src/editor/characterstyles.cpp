#include "editor/characterstyles.h"

#include "editor/fontsizes.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

CharacterStyles::CharacterStyles(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
    , m_commands(commands)
{
    addSwitch(
        TextCommand::Bold, u"Bold"_s,
        [](const QTextCharFormat &, const QFont &font) { return font.bold(); },
        [](QTextCharFormat &look, bool on) {
            look.setFontWeight(on ? QFont::Bold : QFont::Normal);
        });
    addSwitch(
        TextCommand::Italic, u"Italic"_s,
        [](const QTextCharFormat &, const QFont &font) { return font.italic(); },
        [](QTextCharFormat &look, bool on) { look.setFontItalic(on); });
    addLines();
    addScripts();
    addSizes();
}

void CharacterStyles::addLines()
{
    addSwitch(
        TextCommand::Underline, u"Underline"_s,
        [](const QTextCharFormat &look, const QFont &) {
            return look.underlineStyle() != QTextCharFormat::NoUnderline;
        },
        [](QTextCharFormat &look, bool on) { look.setFontUnderline(on); });
    addSwitch(
        TextCommand::Strikethrough, u"Strikethrough"_s,
        [](const QTextCharFormat &look, const QFont &) { return look.fontStrikeOut(); },
        [](QTextCharFormat &look, bool on) { look.setFontStrikeOut(on); });
}

void CharacterStyles::addScripts()
{
    const auto addScript = [this](TextCommand command, const QString &name,
                                  QTextCharFormat::VerticalAlignment script) {
        addSwitch(
            command, name,
            [script](const QTextCharFormat &look, const QFont &) {
                return look.verticalAlignment() == script;
            },
            [script](QTextCharFormat &look, bool on) {
                look.setVerticalAlignment(on ? script : QTextCharFormat::AlignNormal);
            });
    };
    addScript(TextCommand::Superscript, u"Superscript"_s, QTextCharFormat::AlignSuperScript);
    addScript(TextCommand::Subscript, u"Subscript"_s, QTextCharFormat::AlignSubScript);
}

void CharacterStyles::addSizes()
{
    const auto addStep = [this](TextCommand command, const QString &name, double (*step)(double)) {
        m_commands.define(
            command,
            [this, name, step] {
                const QTextDocument &document = *m_editor.document();
                m_editor.changeLooks(name, [&document, step](QTextCharFormat &look) {
                    look.setFontPointSize(step(fontSizeOf(look, document)));
                });
            },
            [this] {
                return MenuItemState {!m_editor.isReadOnly(), {}, {}};
            });
    };
    addStep(TextCommand::Bigger, u"Bigger"_s, &biggerFontSize);
    addStep(TextCommand::Smaller, u"Smaller"_s, &smallerFontSize);
}

void CharacterStyles::addSwitch(TextCommand command, const QString &name, const IsOn &isOn,
                                const Set &set)
{
    m_commands.define(
        command,
        [this, name, isOn, set] {
            m_editor.changeLooks(
                name, [&set, on = !this->isOn(isOn)](QTextCharFormat &look) { set(look, on); });
            m_editor.setFocus();
        },
        [this, isOn] {
            return MenuItemState {!m_editor.isReadOnly(), {}, this->isOn(isOn)};
        });
}

bool CharacterStyles::isOn(const IsOn &isOn) const
{
    const QFont normal = m_editor.document()->defaultFont();
    const QList<QTextCharFormat> &looks = m_editor.looks();
    return std::all_of(looks.begin(), looks.end(), [&](const QTextCharFormat &look) {
        return isOn(look, look.font().resolve(normal));
    });
}

} // namespace quorvane
