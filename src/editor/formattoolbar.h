#pragma once

#include <QToolBar>

class QComboBox;
class QFontComboBox;
class QTextCharFormat;

namespace quorvane {

class TextEditor;

/// The bar that shows and sets the style of the text at the caret. Its actions carry the usual
/// shortcuts, which work while the bar is hidden too; a menu may show the same actions.
class FormatToolbar final : public QToolBar
{
    Q_OBJECT

public:
    /// \a editor outlives the bar.
    explicit FormatToolbar(TextEditor &editor, QWidget *parent = nullptr);

    QAction *boldAction() const { return m_bold; }

    QAction *italicAction() const { return m_italic; }

    QAction *underlineAction() const { return m_underline; }

    /// Puts the action at the far end of the bar. setFormattingEnabled leaves it alone.
    void addLockAction(QAction *action);
    /// Off for a text that cannot be edited.
    void setFormattingEnabled(bool enabled);

private:
    QAction *addStyle(const QString &text, const QIcon &icon, const QKeySequence &shortcut);
    void addFamilies();
    void addSizes();
    void apply(const QTextCharFormat &format);
    void applyStyle(QAction *action, bool checked);
    void applySize(const QString &text);
    void showFormat(const QTextCharFormat &format);

    TextEditor &m_editor;
    QAction *m_bold = nullptr;
    QAction *m_italic = nullptr;
    QAction *m_underline = nullptr;
    QFontComboBox *m_family = nullptr;
    QComboBox *m_size = nullptr;
};

} // namespace quorvane
