#include "editor/formsheet.h"

#include <QAbstractSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

FormSheet::FormSheet(const QString &title, const QString &explanation, const QString &confirmTitle,
                     QWidget *host)
    : SheetDialog(title, explanation, host)
    , m_form(new QFormLayout)
{
    m_form->setSpacing(10);
    m_form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    column().addLayout(m_form);
    column().addStretch(1);
    m_confirm = &addButtons(confirmTitle, u"Cancel"_s);
}

void FormSheet::begin(NSWindow &window, const QObject *context, std::function<void()> confirmed)
{
    window.beginSheet(
        *this, [this, context = QPointer(context), confirmed = std::move(confirmed)](int code) {
            if (code == Accepted && context) {
                confirmed();
            }
            deleteLater();
        });
}

void FormSheet::addField(const QString &name, QWidget *field)
{
    auto *label = new QLabel(name, this);
    label->setBuddy(field);
    m_form->addRow(label, field);
    m_first = m_first ? m_first.data() : field;
}

void FormSheet::addField(const QString &name, QLayout *fields, QWidget *first)
{
    auto *label = new QLabel(name, this);
    label->setBuddy(first);
    m_form->addRow(label, fields);
    m_first = m_first ? m_first.data() : first;
}

void FormSheet::focusFirst()
{
    if (m_first) {
        m_first->setFocus();
    }
    if (auto *field = qobject_cast<QLineEdit *>(m_first.data())) {
        field->selectAll();
    } else if (auto *number = qobject_cast<QAbstractSpinBox *>(m_first.data())) {
        number->selectAll();
    }
}

} // namespace quorvane
