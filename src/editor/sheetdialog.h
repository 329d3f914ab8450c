#pragma once

#include "platform/nswindow.h"

#include <QDialog>

class QBoxLayout;
class QPushButton;

namespace quorvane {

/// A sheet of a document's window with a heading and words that say what it is for. It does not end
/// by itself: whoever began it ends it with endSheet. Where the screen is too small for it, what
/// stands above its buttons scrolls.
class SheetDialog : public QDialog, public NSSheet
{
    Q_OBJECT

public:
    /// \a host is the window that the sheet belongs to.
    SheetDialog(const QString &title, const QString &explanation, QWidget *host);

    void beginSheet(std::function<void(int code)> ended) override;
    void endSheet(int code) override;
    void putForward() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    /// What stands below the explanation, from top to bottom.
    QBoxLayout &column() const { return *m_column; }

    /// Adds the buttons that accept and reject the sheet, as the desktop orders them. Returns the
    /// first, which is the default one.
    QPushButton &addButtons(const QString &acceptTitle, const QString &rejectTitle);
    /// Adds the only button: it rejects the sheet.
    void addCloseButton(const QString &title);

    /// The sheet is up: gives the keyboard to its first field.
    virtual void focusFirst() = 0;

private:
    int neededHeight() const;
    void makeRoom();
    void orderTabs();
    void nameFields();

    QWidget *m_content = nullptr;
    QBoxLayout *m_column = nullptr;
    QBoxLayout *m_foot = nullptr;
    std::function<void(int)> m_ended;
};

} // namespace quorvane
