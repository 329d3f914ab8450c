#pragma once

#include "platform/nswindow.h"

#include <QDialog>
#include <QObject>

namespace quorvane {

/// A dialog as a sheet: modal to its window, or to the program where the dialog says so. Belongs to
/// the dialog and dies with it; the dialog's result is the code.
class DialogSheet final : public QObject, public NSSheet
{
    Q_OBJECT

public:
    explicit DialogSheet(QDialog &dialog);
    ~DialogSheet() override;

    void beginSheet(std::function<void(int code)> ended) override;
    /// Ends what the dialog itself has open first: menus, and questions of its own.
    void endSheet(int code) override;
    void putForward() override;

private:
    void tell(int code);

    QDialog &m_dialog;
    std::function<void(int code)> m_ended;
};

} // namespace quorvane
