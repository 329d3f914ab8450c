#include "editor/formsheet.h"

#include <QAbstractSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
constexpr int buttonHeight = 28;
}

FormSheet::FormSheet(const QString &title, const QString &explanation, const QString &confirmTitle,
                     QWidget *host)
    : SheetDialog(title, explanation, host)
    , m_form(new QFormLayout)
    , m_confirm(new QPushButton(confirmTitle, this))
{
    m_form->setSpacing(10);
    m_form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    column().addLayout(m_form);
    column().addStretch(1);
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setAutoDefault(false);
    m_confirm->setDefault(true);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton *button : {cancel, m_confirm}) {
        button->setMinimumHeight(buttonHeight);
        row->addWidget(button);
    }
    column().addLayout(row);
    connect(m_confirm, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
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
    field->setAccessibleName(QString(name).remove(u'&').chopped(1));
    auto *label = new QLabel(name, this);
    label->setBuddy(field);
    m_form->addRow(label, field);
    m_first = m_first ? m_first.data() : field;
    setTabOrder(field, m_confirm);
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
