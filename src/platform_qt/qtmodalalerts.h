#pragma once

#include "platform/nsalert.h"
#include "platform/sheetqueue.h"

#include <QObject>

namespace quorvane {

/// Alerts before all windows of the program, one at a time.
class QtModalAlerts final : public QObject, public ModalAlerts
{
    Q_OBJECT

public:
    explicit QtModalAlerts(NSOperationQueue &queue);

    void runModal(const NSAlert &alert, AlertCompletion completion) override;

private:
    SheetQueue m_alerts;
};

} // namespace quorvane
