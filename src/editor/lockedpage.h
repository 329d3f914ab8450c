#pragma once

#include "platform/nswindow.h"

#include <QWidget>

#include <memory>

class QFont;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace quorvane {

class CapsLockNotice;
class PublicNoteView;

/// What a locked document shows: its name, its public note, and the place for the password.
class LockedPage final : public QWidget
{
    Q_OBJECT

public:
    explicit LockedPage(QWidget *parent = nullptr);
    ~LockedPage() override;

    void setDocumentName(const QString &name);
    /// Plain text that anyone may read. Its place is empty where there is none.
    void setPublicNote(const QString &note);
    void setNoteFont(const QFont &font);
    /// Puts the keyboard into the password field, with what it holds selected.
    void focusPassword();

    NSSecureTextField &passwordField();
    NSProgressIndicator &progressIndicator();

    /// How much of the text is read behind a right password, from 0 to 1. It is on the screen at
    /// once: the main thread goes on reading.
    void showReading(double done);

signals:
    /// Return in the field, or the button; an empty password too.
    void passwordSubmitted(const QString &password);

private:
    class Field;
    class Indicator;

    QWidget *newHeader();
    QWidget *newPasswordRow();
    void submit();

    QLabel *m_name = nullptr;
    PublicNoteView *m_note = nullptr;
    QLabel *m_noNote = nullptr;
    QLineEdit *m_password = nullptr;
    QPushButton *m_unlock = nullptr;
    CapsLockNotice *m_capsLock = nullptr;
    QProgressBar *m_progress = nullptr;
    std::unique_ptr<Field> m_field;
    std::unique_ptr<Indicator> m_indicator;
};

} // namespace quorvane
