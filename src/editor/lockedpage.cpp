#include "editor/lockedpage.h"

#include "editor/capslocknotice.h"
#include "editor/glyphpicture.h"
#include "editor/palelabel.h"
#include "editor/publicnoteview.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int padlockExtent = 44;

/// A name that is too long for its place is cut in the middle.
class NameLabel final : public QLabel
{
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override { return {40, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, shown);
    }
};

} // namespace

class LockedPage::Field final : public NSSecureTextField
{
public:
    explicit Field(QLineEdit &edit)
        : m_edit(edit)
    { }

    QString stringValue() const override { return m_edit.text(); }

    void setStringValue(const QString &text) override { m_edit.setText(text); }

private:
    QLineEdit &m_edit;
};

/// Runs while the main thread is busy: it must be on the screen before that begins.
class LockedPage::Indicator final : public NSProgressIndicator
{
public:
    explicit Indicator(QProgressBar &bar)
        : m_bar(bar)
    { }

    void setHidden(bool hidden) override
    {
        m_bar.setTextVisible(false);
        m_bar.setVisible(!hidden);
        m_bar.repaint();
    }

    void startAnimation() override
    {
        m_bar.setRange(0, 0);
        m_bar.repaint();
    }

    void stopAnimation() override
    {
        m_bar.setRange(0, 1);
        m_bar.reset();
    }

private:
    QProgressBar &m_bar;
};

LockedPage::LockedPage(QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(28, 22, 28, 20);
    column->setSpacing(14);
    column->addWidget(newHeader());

    m_note = new PublicNoteView(this);
    m_note->setForReading();
    m_note->setMinimumHeight(40);
    column->addWidget(m_note, 1);
    m_noNote = new PaleLabel(u"No public note"_s, this);
    m_noNote->setAlignment(Qt::AlignCenter);
    column->addWidget(m_noNote, 1);

    column->addWidget(newPasswordRow());
    m_progress = new QProgressBar(this);
    m_progress->setAccessibleName(u"Opening the document"_s);
    m_progress->setTextVisible(false);
    m_progress->setFixedHeight(6);
    QSizePolicy kept = m_progress->sizePolicy();
    kept.setRetainSizeWhenHidden(true); // nothing jumps when it shows
    m_progress->setSizePolicy(kept);
    m_progress->hide();
    m_capsLock = new CapsLockNotice(this);
    m_capsLock->watch(*m_password);
    connect(m_capsLock, &CapsLockNotice::changed, this, [this](bool on) {
        m_password->setAccessibleDescription(on ? m_capsLock->text() : QString());
    });
    auto *notices = new QVBoxLayout;
    notices->setSpacing(4);
    notices->addWidget(m_progress);
    notices->addWidget(m_capsLock);
    column->addLayout(notices);

    m_field = std::make_unique<Field>(*m_password);
    m_indicator = std::make_unique<Indicator>(*m_progress);
    setPublicNote(QString());
    setFocusProxy(m_password);
}

LockedPage::~LockedPage() = default;

QWidget *LockedPage::newHeader()
{
    auto *header = new QWidget(this);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(14);
    row->addWidget(new GlyphPicture(Glyph::Padlock, padlockExtent, header));
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    m_name = new NameLabel(header);
    QFont font = m_name->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.35);
    m_name->setFont(font);
    texts->addWidget(m_name);
    texts->addWidget(new QLabel(u"This document is locked."_s, header));
    row->addLayout(texts, 1);
    return header;
}

QWidget *LockedPage::newPasswordRow()
{
    auto *holder = new QWidget(this);
    auto *row = new QHBoxLayout(holder);
    row->setContentsMargins(0, 0, 0, 0);
    m_password = new QLineEdit(holder);
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setAccessibleName(u"Master Password"_s);
    m_password->setPlaceholderText(u"Master Password"_s);
    m_password->setMinimumHeight(30);
    m_password->setTextMargins(4, 0, 4, 0);
    row->addWidget(m_password, 1);
    m_unlock = new QPushButton(u"Unlock"_s, holder);
    m_unlock->setDefault(true);
    m_unlock->setMinimumHeight(30);
    row->addWidget(m_unlock);
    connect(m_password, &QLineEdit::returnPressed, this, &LockedPage::submit);
    connect(m_unlock, &QPushButton::clicked, this, &LockedPage::submit);
    return holder;
}

void LockedPage::setDocumentName(const QString &name)
{
    m_name->setText(name);
    m_name->setToolTip(name.toHtmlEscaped());
}

void LockedPage::setPublicNote(const QString &note)
{
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
    m_noNote->setVisible(note.isEmpty());
}

void LockedPage::setNoteFont(const QFont &font)
{
    m_note->setNoteFont(font);
}

void LockedPage::focusPassword()
{
    m_password->setFocus();
    m_password->selectAll();
}

NSSecureTextField &LockedPage::passwordField()
{
    return *m_field;
}

NSProgressIndicator &LockedPage::progressIndicator()
{
    return *m_indicator;
}

void LockedPage::submit()
{
    const QPointer<LockedPage> self(this);
    emit passwordSubmitted(m_password->text());
    // A wrong password stays, ready to be typed over.
    if (self && m_password->isVisible()) {
        focusPassword();
    }
}

} // namespace quorvane
