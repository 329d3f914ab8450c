#pragma once

#include "platform/nswindow.h"

#include <QDialog>

class QBoxLayout;

namespace quorvane {

/// A sheet of a document's window with a heading and words that say what it is for. It does not end
/// by itself: whoever began it ends it with endSheet.
class SheetDialog : public QDialog, public NSSheet
{
    Q_OBJECT

public:
    /// \a host is the window that the sheet belongs to.
    SheetDialog(const QString &title, const QString &explanation, QWidget *host);

    void beginSheet(std::function<void(int code)> ended) override;
    void endSheet(int code) override;
    void putForward() override;

protected:
    /// What stands below the explanation, from top to bottom.
    QBoxLayout &column() const { return *m_column; }

    /// The sheet is up: gives the keyboard to its first field.
    virtual void focusFirst() = 0;

    bool event(QEvent *event) override;

private:
    void makeRoom();

    QBoxLayout *m_column = nullptr;
    std::function<void(int)> m_ended;
};

} // namespace quorvane
