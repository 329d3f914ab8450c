#include "editor/passwordsheet.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

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

} // namespace

PasswordSheet::PasswordSheet(Kind kind, QWidget *host)
    : QDialog(host)
    , m_kind(kind)
{
    const SheetTexts texts = textsOf(kind);
    setWindowTitle(texts.title);
    setWindowModality(Qt::WindowModal);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(24, 20, 24, 20);
    column->setSpacing(14);
    auto *title = new QLabel(texts.title, this);
    QFont font = title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    title->setFont(font);
    column->addWidget(title);
    auto *explanation = new QLabel(texts.explanation, this);
    explanation->setWordWrap(true);
    column->addWidget(explanation);

    auto *form = new QFormLayout;
    form->setSpacing(10);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    if (kind == Kind::Change) {
        m_previous = addField(*form, u"Old Master Password"_s);
        connect(m_previous, &QLineEdit::textEdited, this, &PasswordSheet::previousEdited);
    }
    m_inserted = addField(*form, texts.inserted);
    connect(m_inserted, &QLineEdit::textEdited, this, &PasswordSheet::insertedEdited);
    m_retype = addField(*form, texts.retype);
    connect(m_retype, &QLineEdit::textEdited, this, &PasswordSheet::retypeEdited);
    m_showPassword = new QCheckBox(u"Show password"_s, this);
    form->addRow(QString(), m_showPassword);
    connect(m_showPassword, &QCheckBox::toggled, this, &PasswordSheet::setEcho);
    connect(m_showPassword, &QCheckBox::clicked, this, &PasswordSheet::showsClearPasswordChanged);
    column->addLayout(form);
    column->addStretch(1);
    column->addLayout(newButtons());
    setMinimumWidth(440);
    connect(this, &QDialog::finished, this, [this](int code) {
        if (const auto ended = std::exchange(m_ended, nullptr)) {
            ended(code);
        }
    });
}

QLineEdit *PasswordSheet::addField(QFormLayout &form, const QString &name)
{
    auto *field = new QLineEdit(this);
    field->setEchoMode(QLineEdit::Password);
    field->setAccessibleName(name);
    field->setMinimumHeight(28);
    field->setTextMargins(4, 0, 4, 0);
    form.addRow(name + u':', field);
    return field;
}

QLayout *PasswordSheet::newButtons()
{
    const SheetTexts texts = textsOf(m_kind);
    auto *row = new QHBoxLayout;
    row->addStretch(1);
    auto *accepts = new QPushButton(texts.accept, this);
    accepts->setDefault(true);
    connect(accepts, &QPushButton::clicked, this, &PasswordSheet::accept);
    accepts->setMinimumHeight(28);
    row->addWidget(accepts);
    auto *declines = new QPushButton(texts.decline, this);
    declines->setAutoDefault(false);
    connect(declines, &QPushButton::clicked, this, &PasswordSheet::reject);
    declines->setMinimumHeight(28);
    row->addWidget(declines);
    return row;
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
    m_ended = std::move(ended);
    open();
    QLineEdit *first = m_previous ? m_previous : m_inserted;
    first->setFocus();
    first->deselect();
    first->end(false);
}

void PasswordSheet::endSheet(int code)
{
    done(code);
}

void PasswordSheet::putForward()
{
    raise();
    activateWindow();
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
