#include "editor/paragraphsheet.h"

#include "editor/lengthfield.h"
#include "editor/linespacing.h"
#include "editor/paragraphformats.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double mostSpace = 96 * 10;
constexpr double mostIndent = 96 * 20;
constexpr double mostLines = 10;
constexpr double mostPoints = 500;
constexpr double usualPoints = 14;
constexpr int smallestWidth = 380;

Qt::AlignmentFlag alignmentOf(const QTextBlockFormat &format)
{
    for (const auto alignment : {Qt::AlignRight, Qt::AlignHCenter, Qt::AlignJustify}) {
        if (format.alignment().testFlag(alignment)) {
            return alignment;
        }
    }
    return Qt::AlignLeft;
}

bool isTouched(const LengthField *field)
{
    return field && field->property("touched").toBool();
}

void setLength(QTextBlockFormat &format, int property, const LengthField *field)
{
    if (!isTouched(field)) {
        return;
    }
    if (field->length() == 0) {
        format.clearProperty(property);
    } else {
        format.setProperty(property, field->length());
    }
}

} // namespace

ParagraphSheet::ParagraphSheet(const QTextBlockFormat &format, bool isListItem, QWidget *host)
    : SheetDialog(u"Paragraph"_s, u"Changes the selected paragraphs."_s, host)
    , m_initial(format)
{
    auto *form = new QFormLayout;
    form->setHorizontalSpacing(16);
    form->setVerticalSpacing(8);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    addAlignment(*form);
    addSpacing(*form);
    addIndents(*form, isListItem);
    m_pageBreak = new QCheckBox(u"Begin on a new &page"_s, this);
    m_pageBreak->setChecked(hasPageBreakBefore(format));
    form->addRow(QString(), m_pageBreak);
    column().addLayout(form);
    column().addStretch(1);
    addButtons(u"OK"_s, u"Cancel"_s);
    setMinimumWidth(smallestWidth);
}

void ParagraphSheet::addAlignment(QFormLayout &form)
{
    m_alignment = new QComboBox(this);
    m_alignment->addItem(u"Left"_s, int(Qt::AlignLeft));
    m_alignment->addItem(u"Centred"_s, int(Qt::AlignHCenter));
    m_alignment->addItem(u"Right"_s, int(Qt::AlignRight));
    m_alignment->addItem(u"Justified"_s, int(Qt::AlignJustify));
    m_alignment->setCurrentIndex(m_alignment->findData(int(alignmentOf(m_initial))));
    form.addRow(u"&Alignment:"_s, m_alignment);
}

void ParagraphSheet::addSpacing(QFormLayout &form)
{
    const LineSpacing initial = lineSpacingOf(m_initial);
    m_spacing = new QComboBox(this);
    m_spacing->addItem(u"Multiple of a line"_s, int(LineSpacing::Kind::Multiple));
    m_spacing->addItem(u"At least"_s, int(LineSpacing::Kind::AtLeast));
    m_spacing->addItem(u"Exactly"_s, int(LineSpacing::Kind::Exactly));
    m_spacing->addItem(u"Space between"_s, int(LineSpacing::Kind::Between));
    m_spacing->setCurrentIndex(m_spacing->findData(int(initial.kind)));
    m_spacingValue = new QDoubleSpinBox(this);
    m_spacingValue->setAccessibleName(u"Line spacing"_s);
    m_spacingValue->setAlignment(Qt::AlignRight);
    showSpacingUnit();
    m_spacingValue->setValue(initial.value);
    auto *row = new QHBoxLayout;
    row->addWidget(m_spacing, 1);
    row->addWidget(m_spacingValue);
    form.addRow(u"&Line spacing:"_s, row);
    if (auto *label = qobject_cast<QLabel *>(form.labelForField(row))) {
        label->setBuddy(m_spacing);
    }
    connect(m_spacing, &QComboBox::currentIndexChanged, this, [this] {
        showSpacingUnit();
        const bool isMultiple = m_spacing->currentIndex() == 0;
        m_spacingValue->setValue(isMultiple ? 1 : usualPoints);
        m_spacingIsTouched = true;
    });
    connect(m_spacingValue, &QDoubleSpinBox::valueChanged, this,
            [this] { m_spacingIsTouched = true; });
    m_before = addLength(form, u"Space &before:"_s, false, m_initial.topMargin());
    m_after = addLength(form, u"Space a&fter:"_s, false, m_initial.bottomMargin());
    m_spacingIsTouched = false;
}

void ParagraphSheet::showSpacingUnit()
{
    const bool isMultiple = m_spacing->currentIndex() == 0;
    m_spacingValue->setSuffix(isMultiple ? QString() : u"\u00a0pt"_s);
    m_spacingValue->setDecimals(isMultiple ? 2 : 1);
    m_spacingValue->setSingleStep(isMultiple ? 0.1 : 1);
    const bool isBetween = m_spacing->currentIndex() == 3;
    m_spacingValue->setRange(isMultiple ? 0.5 : (isBetween ? 0 : 1),
                             isMultiple ? mostLines : mostPoints);
}

void ParagraphSheet::addIndents(QFormLayout &form, bool isListItem)
{
    m_left = addLength(form, u"Indent l&eft:"_s, true, m_initial.leftMargin());
    m_right = addLength(form, u"Indent &right:"_s, true, m_initial.rightMargin());
    if (!isListItem) { // its mark stands there
        m_first = addLength(form, u"F&irst line:"_s, true, m_initial.textIndent());
        m_first->setLengthRange(-mostIndent, mostIndent);
        m_first->setLength(m_initial.textIndent());
        m_first->setProperty("touched", false);
    }
}

LengthField *ParagraphSheet::addLength(QFormLayout &form, const QString &title, bool isIndent,
                                       double pixels)
{
    auto *field =
        new LengthField(isIndent ? LengthField::Unit::Local : LengthField::Unit::Points, this);
    field->setLengthRange(0, isIndent ? mostIndent : mostSpace);
    field->setLength(pixels);
    connect(field, &QDoubleSpinBox::valueChanged, field,
            [field] { field->setProperty("touched", true); });
    form.addRow(title, field);
    return field;
}

void ParagraphSheet::applyTo(QTextBlockFormat &format) const
{
    const auto alignment = Qt::AlignmentFlag(m_alignment->currentData().toInt());
    if (alignment != alignmentOf(m_initial)) {
        format.setAlignment(alignment);
    }
    if (m_spacingIsTouched) {
        setLineSpacing(
            format, {LineSpacing::Kind(m_spacing->currentData().toInt()), m_spacingValue->value()});
    }
    setLength(format, QTextFormat::BlockTopMargin, m_before);
    setLength(format, QTextFormat::BlockBottomMargin, m_after);
    setLength(format, QTextFormat::BlockRightMargin, m_right);
    setIndents(format, isTouched(m_left) ? m_left->length() : format.leftMargin(),
               isTouched(m_first) ? m_first->length() : format.textIndent());
    if (m_pageBreak->isChecked() != hasPageBreakBefore(m_initial)) {
        setPageBreakBefore(format, m_pageBreak->isChecked());
    }
}

void ParagraphSheet::focusFirst()
{
    m_alignment->setFocus();
}

} // namespace quorvane
