#include "editor/sheetdialog.h"

#include <QApplication>
#include <QBoxLayout>
#include <QEvent>
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

bool SheetDialog::event(QEvent *event)
{
    const bool isTaken = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest) {
        makeRoom();
    }
    return isTaken;
}

// Layouts do not enlarge a window for words that wrap. It stays as large as it was needed once: a
// sheet that went up and down with each key would be worse.
void SheetDialog::makeRoom()
{
    const int needed = layout()->totalHeightForWidth(width());
    if (isVisible() && needed > minimumHeight()) {
        setMinimumHeight(needed);
    }
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
