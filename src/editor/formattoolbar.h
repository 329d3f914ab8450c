#pragma once

#include "editor/textcommands.h"

#include <QToolBar>

class QComboBox;
class QFontComboBox;
class QTextCharFormat;

namespace quorvane {

class TextEditor;

/// The bar that shows and sets the style of the text at the caret.
class FormatToolbar final : public QToolBar
{
    Q_OBJECT

public:
    /// \a editor and \a commands outlive the bar.
    FormatToolbar(TextEditor &editor, TextCommands &commands, QWidget *parent = nullptr);

    /// Puts the action at the far end of the bar. setFormattingEnabled leaves it alone.
    void addLockAction(QAction *action);
    /// Off for a text that cannot be edited.
    void setFormattingEnabled(bool enabled);

private:
    void addStyle(TextCommand command, const QIcon &icon, const QString &tip);
    void addFamilies();
    void addSizes();
    void apply(const QTextCharFormat &format);
    void applySize(const QString &text);
    void showFormat(const QTextCharFormat &format);

    TextEditor &m_editor;
    TextCommands &m_commands;
    QFontComboBox *m_family = nullptr;
    QComboBox *m_size = nullptr;
};

} // namespace quorvane
