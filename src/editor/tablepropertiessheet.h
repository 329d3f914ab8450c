#pragma once

#include "editor/formsheet.h"
#include "editor/tablelook.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

namespace quorvane {

class ColourBox;

/// Asks for the look of a table and of its cells.
class TablePropertiesSheet final : public FormSheet
{
    Q_OBJECT

public:
    /// \a selected is the look of the cells that the caret or the selection is in, the first of
    /// them in \a column; \a all is the look of all cells.
    TablePropertiesSheet(const TableLook &table, const CellLook &selected, const CellLook &all,
                         int column, QWidget *host);

    TableLook table() const;
    CellLook cells() const; ///< Without what was left as it was.
    bool isForAllCells() const;

private:
    void addTableFields(int column);
    void addCellFields();
    void showWidth();
    void makeWidthsEqual();
    void showCells(const CellLook &look);

    TableLook m_table;
    CellLook m_selected;
    CellLook m_all;
    CellLook m_changed;
    QComboBox *m_alignment = nullptr;
    QCheckBox *m_header = nullptr;
    QSpinBox *m_column = nullptr;
    QDoubleSpinBox *m_width = nullptr;
    QComboBox *m_range = nullptr;
    QComboBox *m_border = nullptr;
    ColourBox *m_borderColour = nullptr;
    ColourBox *m_shade = nullptr;
    QComboBox *m_vertical = nullptr;
};

} // namespace quorvane
