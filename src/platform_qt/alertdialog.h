#pragma once

#include "platform/nsalert.h"

#include <QDialog>

class QHBoxLayout;

namespace quorvane {

/// An alert on the screen. The buttons stand in the order in which they were added, the first is
/// the default one, and the result is 1000 for the first, 1001 for the second and so on. Escape and
/// the window's close button press "Cancel" or an only button, and do nothing else.
class AlertDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit AlertDialog(const NSAlert &alert, QWidget *parent = nullptr);

    void reject() override;

private:
    void addTexts(const NSAlert &alert, QHBoxLayout &row);
    QHBoxLayout *makeButtons(const QStringList &titles);

    std::optional<int> m_escapeCode;
};

} // namespace quorvane
