#include "editor/picturesizesheet.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double smallest = 1;
constexpr double largest = 4000;

} // namespace

PictureSizeSheet::PictureSizeSheet(const QString &name, const QSizeF &size, const QSizeF &natural,
                                   QWidget *host)
    : SheetDialog(u"Picture Size"_s,
                  u"How large “%1” is shown. The file stays as it is: nothing of the picture is "
                  "lost."_s.arg(name),
                  host)
    , m_natural(natural)
    , m_ratio(size.width() / size.height())
{
    auto *grid = new QGridLayout;
    grid->setColumnStretch(2, 1);
    grid->setHorizontalSpacing(12);
    m_width = addField(*grid, u"&Width:"_s, size.width());
    auto *original = new QPushButton(u"&Original Size"_s, this);
    original->setAutoDefault(false);
    grid->addWidget(original, 0, 3);
    m_height = addField(*grid, u"&Height:"_s, size.height());
    m_keepsRatio = new QCheckBox(u"&Keep the ratio"_s, this);
    m_keepsRatio->setChecked(true);
    grid->addWidget(m_keepsRatio, 2, 1, 1, 2);
    column().addLayout(grid);
    addButtons(u"Resize"_s, u"Cancel"_s);
    connect(m_width, &QDoubleSpinBox::valueChanged, this, [this] { follow(true); });
    connect(m_height, &QDoubleSpinBox::valueChanged, this, [this] { follow(false); });
    connect(m_keepsRatio, &QCheckBox::toggled, this, [this](bool keeps) {
        if (keeps) {
            m_ratio = m_width->value() / m_height->value();
        }
    });
    connect(original, &QPushButton::clicked, this, &PictureSizeSheet::showOriginal);
}

QDoubleSpinBox *PictureSizeSheet::addField(QGridLayout &grid, const QString &title, double value)
{
    auto *field = new QDoubleSpinBox(this);
    field->setRange(smallest, largest);
    field->setDecimals(1);
    field->setSuffix(u" px"_s);
    field->setValue(value);
    auto *label = new QLabel(title, this);
    label->setBuddy(field);
    const int row = grid.rowCount();
    grid.addWidget(label, row == 1 && !grid.itemAtPosition(0, 0) ? 0 : row, 0,
                   Qt::AlignRight | Qt::AlignVCenter);
    grid.addWidget(field, row == 1 && !grid.itemAtPosition(0, 1) ? 0 : row, 1);
    return field;
}

QSizeF PictureSizeSheet::chosenSize() const
{
    return {m_width->value(), m_height->value()};
}

void PictureSizeSheet::accept()
{
    emit answered(QDialog::Accepted);
}

void PictureSizeSheet::reject()
{
    emit answered(QDialog::Rejected);
}

void PictureSizeSheet::focusFirst()
{
    m_width->setFocus();
    m_width->selectAll();
}

void PictureSizeSheet::follow(bool width)
{
    if (!m_keepsRatio->isChecked()) {
        return;
    }
    QDoubleSpinBox *other = width ? m_height : m_width;
    const QSignalBlocker blocker(other);
    other->setValue(width ? m_width->value() / m_ratio : m_height->value() * m_ratio);
}

void PictureSizeSheet::showOriginal()
{
    const QSignalBlocker widthBlocker(m_width);
    const QSignalBlocker heightBlocker(m_height);
    m_width->setValue(m_natural.width());
    m_height->setValue(m_natural.height());
    m_ratio = m_natural.width() / m_natural.height();
}

} // namespace quorvane
