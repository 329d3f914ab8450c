#pragma once

#include "editor/sheetdialog.h"
#include "editor/tabstops.h"

class QComboBox;

namespace quorvane {

class LengthField;

/// The sheet of one tab stop.
class TabStopSheet final : public SheetDialog
{
    Q_OBJECT

public:
    TabStopSheet(const TabStop &stop, QWidget *host);

    TabStop stop() const;

protected:
    void focusFirst() override;

private:
    TabStop m_initial;
    LengthField *m_position = nullptr;
    QComboBox *m_type = nullptr;
    QComboBox *m_leader = nullptr;
};

} // namespace quorvane
