#pragma once

#include "editor/sheetdialog.h"

class QCheckBox;
class QFormLayout;
class QLineEdit;

namespace quorvane {

class CapsLockNotice;
class PasswordMeter;

/// Asks for a new password, twice, and for the old one where there is one.
///
/// It decides nothing and does not end by itself: its buttons only tell. Whoever began it ends it
/// with endSheet. Its fields keep what was typed until they are set to something else.
class PasswordSheet final : public SheetDialog
{
    Q_OBJECT

public:
    enum class Kind {
        Mandatory, ///< The first password of a document.
        Change, ///< A new one in the place of an old one.
        Insert
    }; ///< A new one, whatever was before.

    static constexpr int acceptTag = modalResponseStop;
    static constexpr int declineTag = acceptTag + 1;

    /// \a host is the window that the sheet belongs to.
    PasswordSheet(Kind kind, QWidget *host);

    Kind kind() const { return m_kind; }

    /// These show a value without telling of it as edited. Only Change has a previous one.
    void setPrevious(const QString &password);
    void setInserted(const QString &password);
    void setRetype(const QString &password);
    void setShowsClearPassword(bool shows);

    void beginSheet(std::function<void(int code)> ended) override;

    /// Return and the first button; Escape, the window manager and the second button.
    void accept() override;
    void reject() override;

protected:
    void focusFirst() override;

signals:
    void previousEdited(const QString &password);
    void insertedEdited(const QString &password);
    void retypeEdited(const QString &password);
    void showsClearPasswordChanged(bool shows);
    void confirmed(); ///< Stands for acceptTag.
    void declined(); ///< Stands for declineTag.

private:
    void addFields(QFormLayout &form);
    QLineEdit *addField(QFormLayout &form, const QString &name);
    void setEcho(bool clear);
    void judge();
    void describeFields();

    Kind m_kind;
    QLineEdit *m_previous = nullptr;
    QLineEdit *m_inserted = nullptr;
    QLineEdit *m_retype = nullptr;
    QCheckBox *m_showPassword = nullptr;
    PasswordMeter *m_meter = nullptr;
    CapsLockNotice *m_capsLock = nullptr;
};

} // namespace quorvane
