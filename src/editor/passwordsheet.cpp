#include "editor/passwordsheet.h"

#include "editor/capslocknotice.h"
#include "editor/passwordmeter.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QFormLayout>
#include <QLineEdit>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct SheetTexts
{
    QString title;
    QString explanation;
    QString inserted;
    QString retype;
    QString accept;
    QString decline;
};

SheetTexts textsOf(PasswordSheet::Kind kind)
{
    switch (kind) {
    case PasswordSheet::Kind::Mandatory:
        return {
            u"Choose a Master Password"_s,
            u"This document has no password yet. It is stored on disk in encrypted form only, so "
            u"it needs one "
            "before it can be used.\n\nThere is no way to recover a forgotten password. Store it in a safe place."_s,
            u"Password"_s,
            u"Retype Password"_s,
            u"Set Password"_s,
            u"Close Document"_s};
    case PasswordSheet::Kind::Change:
        return {u"Change the Master Password"_s,
                u"The new password is used from the next time the document is saved. There is no "
                u"way to recover a "
                "forgotten password."_s,
                u"New Password"_s,
                u"Retype New Password"_s,
                u"Change Password"_s,
                u"Cancel"_s};
    case PasswordSheet::Kind::Insert:
        break;
    }
    return {u"Set a Master Password"_s,
            u"The password is used from the next time the document is saved. There is no way to "
            u"recover a "
            "forgotten password."_s,
            u"New Password"_s,
            u"Retype New Password"_s,
            u"Set Password"_s,
            u"Cancel"_s};
}

void showIn(QLineEdit *field, const QString &password)
{
    // A field that shows the value already keeps its caret.
    if (field && field->text() != password) {
        field->setText(password);
    }
}

// What comes with a pasted password from the end of its line cannot be typed again.
QString typeable(QLineEdit &field, QString text)
{
    if (text.contains(u'\n') || text.contains(u'\r')) {
        text.remove(u'\n').remove(u'\r');
        field.setText(text);
    }
    return text;
}

} // namespace

PasswordSheet::PasswordSheet(Kind kind, QWidget *host)
    : SheetDialog(textsOf(kind).title, textsOf(kind).explanation, host)
    , m_kind(kind)
{
    auto *form = new QFormLayout;
    form->setSpacing(10);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addFields(*form);
    column().addLayout(form);
    column().addStretch(1);
    addButtons(textsOf(kind).accept, textsOf(kind).decline);
    setMinimumWidth(480);
}

void PasswordSheet::addFields(QFormLayout &form)
{
    const SheetTexts texts = textsOf(m_kind);
    m_capsLock = new CapsLockNotice(this);
    m_meter = new PasswordMeter(this);
    if (m_kind == Kind::Change) {
        m_previous = addField(form, u"Old Master Password"_s);
        connect(m_previous, &QLineEdit::textEdited, this, &PasswordSheet::previousEdited);
    }
    m_inserted = addField(form, texts.inserted);
    connect(m_inserted, &QLineEdit::textEdited, this,
            [this](const QString &text) { emit insertedEdited(typeable(*m_inserted, text)); });
    connect(m_inserted, &QLineEdit::textChanged, this, &PasswordSheet::judge);
    form.addRow(QString(), m_meter);
    m_retype = addField(form, texts.retype);
    connect(m_retype, &QLineEdit::textEdited, this,
            [this](const QString &text) { emit retypeEdited(typeable(*m_retype, text)); });
    m_showPassword = new QCheckBox(u"&Show password"_s, this);
    connect(m_showPassword, &QCheckBox::toggled, this, &PasswordSheet::setEcho);
    connect(m_showPassword, &QCheckBox::clicked, this, &PasswordSheet::showsClearPasswordChanged);
    auto *row = new QHBoxLayout;
    row->addWidget(m_showPassword);
    row->addStretch(1);
    row->addWidget(m_capsLock);
    form.addRow(QString(), row);
    connect(m_capsLock, &CapsLockNotice::changed, this, &PasswordSheet::describeFields);
}

QLineEdit *PasswordSheet::addField(QFormLayout &form, const QString &name)
{
    auto *field = new QLineEdit(this);
    field->setEchoMode(QLineEdit::Password);
    field->setAccessibleName(name);
    field->setMinimumHeight(28);
    field->setTextMargins(4, 0, 4, 0);
    m_capsLock->watch(*field);
    form.addRow(name + u':', field);
    return field;
}

void PasswordSheet::judge()
{
    if (isVisible()) { // the fields of all sheets follow each other
        m_meter->setPassword(m_inserted->text());
        describeFields();
    }
}

// The notices are read with the field that they are about.
void PasswordSheet::describeFields()
{
    const QString capsLock = m_capsLock->isOn() ? m_capsLock->text() : QString();
    for (QLineEdit *field : {m_previous, m_inserted, m_retype}) {
        if (field) {
            const QString meter = field == m_inserted ? m_meter->text() : QString();
            field->setAccessibleDescription(QStringList({capsLock, meter}).join(u' ').trimmed());
        }
    }
}

void PasswordSheet::setPrevious(const QString &password)
{
    showIn(m_previous, password);
}

void PasswordSheet::setInserted(const QString &password)
{
    showIn(m_inserted, password);
}

void PasswordSheet::setRetype(const QString &password)
{
    showIn(m_retype, password);
}

void PasswordSheet::setShowsClearPassword(bool shows)
{
    m_showPassword->setChecked(shows);
}

void PasswordSheet::setEcho(bool clear)
{
    for (QLineEdit *field : {m_previous, m_inserted, m_retype}) {
        if (!field) {
            continue;
        }
        field->setEchoMode(clear ? QLineEdit::Normal : QLineEdit::Password);
        // Input methods must not learn from it.
        field->setInputMethodHints(field->inputMethodHints() | Qt::ImhSensitiveData
                                   | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    }
}

void PasswordSheet::beginSheet(std::function<void(int code)> ended)
{
    const bool isRetry = !m_inserted->text().isEmpty() || !m_retype->text().isEmpty();
    if (!isRetry) {
        setShowsClearPassword(false); // what was shown once is not shown to the next who comes by
    }
    SheetDialog::beginSheet(std::move(ended));
}

void PasswordSheet::focusFirst()
{
    judge();
    QLineEdit *first = m_previous ? m_previous : m_inserted;
    first->setFocus();
    first->deselect();
    first->end(false);
}

void PasswordSheet::accept()
{
    emit confirmed();
}

void PasswordSheet::reject()
{
    emit declined();
}

} // namespace quorvane
