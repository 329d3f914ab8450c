#pragma once

#include <QObject>
#include <QTextCursor>

#include <optional>

class QKeyEvent;

namespace quorvane {

class NSWindow;
class TextCommands;
class TextEditor;

/// Makes, changes and removes links, and makes links of addresses as they are written.
class LinkEditing final : public QObject
{
public:
    /// \a sheets is the window's.
    LinkEditing(TextEditor &editor, TextCommands &commands, NSWindow &sheets);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ask();
    void remove();
    void apply(const std::optional<QString> &text, const QString &address);
    void watchContent();
    void noteKey(const QKeyEvent &key);
    void noteInsertion(int position, int added);
    void linkAddress(QTextCursor text);

    TextEditor &m_editor;
    NSWindow &m_sheets;
};

} // namespace quorvane
