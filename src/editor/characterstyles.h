#pragma once

#include <QObject>
#include <QTextCharFormat>

#include <functional>

class QFont;

namespace quorvane {

class TextCommands;
class TextEditor;
enum class TextCommand;

/// The commands on the look of characters. A selection counts as bold, and so on, where all of it
/// is.
class CharacterStyles final : public QObject
{
public:
    CharacterStyles(TextEditor &editor, TextCommands &commands);

private:
    using IsOn = std::function<bool(const QTextCharFormat &look, const QFont &font)>;
    using Set = std::function<void(QTextCharFormat &look, bool on)>;

    void addSwitch(TextCommand command, const QString &name, const IsOn &isOn, const Set &set);
    void addLines();
    void addScripts();
    void addSizes();
    bool isOn(const IsOn &isOn) const;

    TextEditor &m_editor;
    TextCommands &m_commands;
};

} // namespace quorvane
