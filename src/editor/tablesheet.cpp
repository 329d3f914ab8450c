#include "editor/tablesheet.h"

#include "editor/tableshape.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QSpinBox>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int usualRows = 3;
constexpr int usualColumns = 3;
constexpr int mostNewRows = 100; // thousands of cells are slow to edit
constexpr int mostNewColumns = 20;
static_assert(mostNewRows <= mostTableRows && mostNewColumns <= mostTableColumns);

QSpinBox *newCounter(int most, int usual, QWidget *parent)
{
    auto *counter = new QSpinBox(parent);
    counter->setRange(1, most);
    counter->setValue(usual);
    counter->setMinimumWidth(90);
    return counter;
}

} // namespace

TableSheet::TableSheet(QWidget *host)
    : FormSheet(
        u"Insert Table"_s,
        u"The table comes behind the caret, as wide as the text. Tab goes from cell to cell, "
        "and adds a row behind the last one."_s,
        u"Insert"_s, host)
    , m_rows(newCounter(mostNewRows, usualRows, this))
    , m_columns(newCounter(mostNewColumns, usualColumns, this))
    , m_header(new QCheckBox(u"&Header row"_s, this))
{
    addField(u"&Rows:"_s, m_rows);
    addField(u"&Columns:"_s, m_columns);
    m_header->setToolTip(u"Bold, and repeated where the table goes on on another page"_s);
    form().addRow(QString(), m_header);
    setMinimumWidth(400);
}

int TableSheet::rows() const
{
    return m_rows->value();
}

int TableSheet::columns() const
{
    return m_columns->value();
}

bool TableSheet::hasHeader() const
{
    return m_header->isChecked();
}

} // namespace quorvane
