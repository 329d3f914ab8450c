#include "editor/tablepropertiessheet.h"

#include "editor/colourbox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double narrowest = 2; // per cent
constexpr double widest = 100;
constexpr int fieldWidth = 150;

QComboBox *newChoice(const QList<std::pair<QString, QVariant>> &items, QWidget *parent)
{
    auto *box = new QComboBox(parent);
    for (const auto &[name, value] : items) {
        box->addItem(name, value);
    }
    box->setPlaceholderText(u"Several"_s);
    return box;
}

QFrame *newLine(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

} // namespace

TablePropertiesSheet::TablePropertiesSheet(const TableLook &table, const CellLook &selected,
                                           const CellLook &all, int column, QWidget *host)
    : FormSheet(u"Table Properties"_s,
                u"Column widths are in per cent of the width of the text. Borders, shading and "
                "vertical alignment belong to cells."_s,
                u"Apply"_s, host)
    , m_table(table)
    , m_selected(selected)
    , m_all(all)
{
    addTableFields(column);
    form().addRow(newLine(this));
    addCellFields();
    for (QWidget *field :
         std::initializer_list<QWidget *> {m_alignment, m_column, m_width, m_range, m_border,
                                           m_borderColour, m_shade, m_vertical}) {
        field->setMinimumWidth(fieldWidth);
    }
    showWidth();
    showCells(m_selected);
    setMinimumWidth(440);
}

void TablePropertiesSheet::addTableFields(int column)
{
    m_alignment = newChoice({{u"Left"_s, int(Qt::AlignLeft)},
                             {u"Centre"_s, int(Qt::AlignHCenter)},
                             {u"Right"_s, int(Qt::AlignRight)}},
                            this);
    m_alignment->setCurrentIndex(std::max(m_alignment->findData(int(m_table.alignment)), 0));
    addField(u"A&lignment:"_s, m_alignment);
    m_header = new QCheckBox(u"&Header row, repeated on each page"_s, this);
    m_header->setChecked(m_table.hasHeader);
    form().addRow(QString(), m_header);
    m_column = new QSpinBox(this);
    m_column->setRange(1, int(m_table.widths.size()));
    m_column->setValue(column + 1);
    addField(u"&Column:"_s, m_column);
    m_width = new QDoubleSpinBox(this);
    m_width->setRange(narrowest, widest);
    m_width->setDecimals(1);
    m_width->setSuffix(u" %"_s);
    m_width->setAccessibleName(u"Column Width"_s);
    auto *equal = new QPushButton(u"Make All &Equal"_s, this);
    equal->setAutoDefault(false);
    auto *row = new QHBoxLayout;
    row->addWidget(m_width);
    row->addWidget(equal);
    addField(u"&Width:"_s, row, m_width);
    connect(m_column, &QSpinBox::valueChanged, this, &TablePropertiesSheet::showWidth);
    connect(m_width, &QDoubleSpinBox::valueChanged, this,
            [this](double width) { m_table.widths[m_column->value() - 1] = width; });
    connect(equal, &QPushButton::clicked, this, &TablePropertiesSheet::makeWidthsEqual);
}

void TablePropertiesSheet::addCellFields()
{
    m_range = newChoice({{u"Selected Cells"_s, false}, {u"All Cells"_s, true}}, this);
    addField(u"A&pply to:"_s, m_range);
    m_border = newChoice(
        {{u"None"_s, 0.0}, {u"Thin"_s, 1.0}, {u"Medium"_s, 2.0}, {u"Thick"_s, 3.0}}, this);
    addField(u"&Borders:"_s, m_border);
    m_borderColour = new ColourBox(ColourBox::Nothing::IsNot, this);
    addField(u"B&order Colour:"_s, m_borderColour);
    m_shade = new ColourBox(ColourBox::Nothing::IsOffered, this);
    addField(u"&Shading:"_s, m_shade);
    m_vertical = newChoice({{u"Top"_s, int(QTextCharFormat::AlignTop)},
                            {u"Middle"_s, int(QTextCharFormat::AlignMiddle)},
                            {u"Bottom"_s, int(QTextCharFormat::AlignBottom)}},
                           this);
    addField(u"&Vertical Alignment:"_s, m_vertical);
    connect(m_range, &QComboBox::activated, this,
            [this] { showCells(isForAllCells() ? m_all : m_selected); });
    connect(m_border, &QComboBox::activated, this, [this] {
        m_changed.border = m_border->currentData().toDouble();
        m_changed.borderColour = m_borderColour->colour();
        m_borderColour->setEnabled(m_changed.border > 0.0);
    });
    connect(m_borderColour, &QComboBox::activated, this,
            [this] { m_changed.borderColour = m_borderColour->colour(); });
    connect(m_shade, &QComboBox::activated, this, [this] { m_changed.shade = m_shade->colour(); });
    connect(m_vertical, &QComboBox::activated, this, [this] {
        m_changed.vertical =
            static_cast<QTextCharFormat::VerticalAlignment>(m_vertical->currentData().toInt());
    });
}

void TablePropertiesSheet::showWidth()
{
    const QSignalBlocker quiet(m_width); // it rounds
    m_width->setValue(m_table.widths.at(m_column->value() - 1));
}

void TablePropertiesSheet::makeWidthsEqual()
{
    const double sum = std::accumulate(m_table.widths.begin(), m_table.widths.end(), 0.0);
    m_table.widths.fill(std::min(sum, widest) / double(m_table.widths.size()));
    showWidth();
}

void TablePropertiesSheet::showCells(const CellLook &look)
{
    m_changed = {};
    m_border->setCurrentIndex(look.border ? m_border->findData(*look.border) : -1);
    const bool hasBorder = look.border.value_or(1) > 0;
    m_borderColour->setColour(hasBorder ? look.borderColour
                                        : std::optional(QColor(0x96, 0x96, 0x96)));
    m_borderColour->setEnabled(hasBorder);
    m_shade->setColour(look.shade);
    m_vertical->setCurrentIndex(look.vertical ? m_vertical->findData(int(*look.vertical)) : -1);
}

TableLook TablePropertiesSheet::table() const
{
    TableLook look = m_table;
    look.alignment = Qt::Alignment(m_alignment->currentData().toInt());
    look.hasHeader = m_header->isChecked();
    return look;
}

CellLook TablePropertiesSheet::cells() const
{
    return m_changed;
}

bool TablePropertiesSheet::isForAllCells() const
{
    return m_range->currentData().toBool();
}

} // namespace quorvane
