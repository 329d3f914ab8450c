#include "editor/palelabel.h"

#include <QGraphicsOpacityEffect>

namespace quorvane {

namespace {

constexpr double paleness = 0.65; // black on white is 7:1 then, light on dark no less

} // namespace

PaleLabel::PaleLabel(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    auto *pale = new QGraphicsOpacityEffect(this);
    pale->setOpacity(paleness);
    setGraphicsEffect(pale);
}

} // namespace quorvane
