#include "platform_qt/dialogsheet.h"

#include <QApplication>
#include <QPointer>

#include <utility>

namespace quorvane {

namespace {

QList<QDialog *> openQuestions(const QDialog &dialog)
{
    QList<QDialog *> open;
    for (QDialog *child : dialog.findChildren<QDialog *>()) {
        if (child->isVisible()) {
            open.append(child);
        }
    }
    return open;
}

} // namespace

DialogSheet::DialogSheet(QDialog &dialog)
    : QObject(&dialog)
    , m_dialog(dialog)
{
    connect(&dialog, &QDialog::finished, this, &DialogSheet::tell);
}

DialogSheet::~DialogSheet()
{
    tell(modalResponseStop);
}

void DialogSheet::beginSheet(std::function<void(int code)> ended)
{
    m_ended = std::move(ended);
    if (m_dialog.windowModality() == Qt::ApplicationModal) {
        m_dialog.show();
        putForward();
    } else {
        m_dialog.open();
    }
}

void DialogSheet::endSheet(int code)
{
    const QPointer<DialogSheet> self(this);
    while (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
    }
    const QList<QDialog *> questions = openQuestions(m_dialog);
    for (QDialog *question : questions) {
        question->done(QDialog::Rejected);
    }
    if (self) {
        m_dialog.done(code);
    }
}

void DialogSheet::putForward()
{
    const QList<QDialog *> questions = openQuestions(m_dialog);
    QDialog *const foremost = questions.isEmpty() ? &m_dialog : questions.last();
    foremost->raise();
    foremost->activateWindow();
}

void DialogSheet::tell(int code)
{
    if (const auto ended = std::exchange(m_ended, nullptr)) {
        ended(code);
    }
}

} // namespace quorvane
