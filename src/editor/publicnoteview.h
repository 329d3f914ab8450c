#pragma once

#include "platform/nstextview.h"

#include <QPlainTextEdit>

namespace quorvane {

/// Shows and edits a public note: plain text, whose every character comes back as it was set, line
/// ends of all kinds and blanks that do not break among them.
class PublicNoteView final : public QPlainTextEdit, public NSPlainTextView
{
    Q_OBJECT

public:
    explicit PublicNoteView(QWidget *parent);

    /// Does not count as an edit, and leaves caret and undo alone where this is the text already.
    void setText(const QString &text);
    QString text() const;
    /// For reading alone, with mouse and keyboard.
    void setForReading();
    /// Costs no font before the note is seen.
    void setNoteFont(const QFont &font);

    // It offers neither.
    void setUsesFontPanel(bool) override { }

    void setUsesRuler(bool) override { }

signals:
    void edited();
    void editingEnded(); ///< The keyboard has gone elsewhere after an edit.

protected:
    QMimeData *createMimeDataFromSelection() const override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void noteChange();

    QFont m_noteFont;
    int m_revision = 0;
    bool m_isEdited = false; // since the keyboard came
};

} // namespace quorvane
