#include "editor/scrolleddialog.h"

#include <QBoxLayout>
#include <QDialog>
#include <QDialogButtonBox>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

namespace quorvane {

int tallestOnScreen(const QWidget &window)
{
    constexpr int titleBar = 40; // or less
    return window.screen()->availableGeometry().height() - titleBar;
}

void scrollWhereTooTall(QDialog &dialog)
{
    const int room = tallestOnScreen(dialog);
    const QSize wanted = dialog.sizeHint();
    auto *column = qobject_cast<QVBoxLayout *>(dialog.layout());
    if (!column || wanted.height() <= room) {
        return;
    }
    auto *area = new QScrollArea(&dialog);
    auto *content = new QWidget;
    auto *inner = new QVBoxLayout(content);
    for (int i = 0; i < column->count();) {
        QWidget *part = column->itemAt(i)->widget();
        if (!part || qobject_cast<QDialogButtonBox *>(part)) {
            ++i;
        } else {
            column->removeWidget(part);
            inner->addWidget(part);
        }
    }
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(content);
    column->insertWidget(0, area, 1);
    dialog.resize(wanted.width() + area->verticalScrollBar()->sizeHint().width(), room);
}

} // namespace quorvane
