#pragma once

#include "editor/formsheet.h"

class QCheckBox;
class QSpinBox;

namespace quorvane {

/// Asks how large a new table is to be.
class TableSheet final : public FormSheet
{
    Q_OBJECT

public:
    explicit TableSheet(QWidget *host);

    int rows() const;
    int columns() const;
    bool hasHeader() const;

private:
    QSpinBox *m_rows = nullptr;
    QSpinBox *m_columns = nullptr;
    QCheckBox *m_header = nullptr;
};

} // namespace quorvane
