#include "editor/sheetdialog.h"

#include <QApplication>
#include <QBoxLayout>
#include <QLabel>

#include <utility>

namespace quorvane {

SheetDialog::SheetDialog(const QString &title, const QString &explanation, QWidget *host)
    : QDialog(host)
    , m_column(new QVBoxLayout(this))
{
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setAccessibleDescription(explanation);
    m_column->setContentsMargins(24, 20, 24, 20);
    m_column->setSpacing(14);
    auto *heading = new QLabel(title, this);
    QFont font = heading->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    heading->setFont(font);
    m_column->addWidget(heading);
    auto *words = new QLabel(explanation, this);
    words->setWordWrap(true);
    m_column->addWidget(words);
    connect(this, &QDialog::finished, this, [this](int code) {
        if (const auto ended = std::exchange(m_ended, nullptr)) {
            ended(code);
        }
    });
}

void SheetDialog::beginSheet(std::function<void(int code)> ended)
{
    m_ended = std::move(ended);
    open();
    focusFirst();
}

void SheetDialog::endSheet(int code)
{
    // A menu that is open on the sheet would stay.
    while (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
    }
    done(code);
}

void SheetDialog::putForward()
{
    raise();
    activateWindow();
}

} // namespace quorvane
