#include "app/visibleframes.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <memory>

using namespace Qt::StringLiterals;

namespace quorvane {

void VisibleFrames::apply()
{
    const QString own = u"fusion"_s;
    if (QApplication::style()->name().compare(own, Qt::CaseInsensitive) == 0) {
        std::unique_ptr<VisibleFrames> style(new VisibleFrames(own));
        QApplication::setStyle(style.release()); // which owns it
    }
}

void VisibleFrames::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
                                  QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isBox = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    if (!isBox || option->palette.color(QPalette::Window).lightness() >= 128) {
        return;
    }
    QColor line = option->palette.color(QPalette::WindowText);
    line.setAlphaF(0.5F);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(line);
    painter->setBrush(Qt::NoBrush);
    const QRectF frame = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (element == PE_IndicatorCheckBox) {
        painter->drawRect(frame);
    } else {
        painter->drawEllipse(frame);
    }
    painter->restore();
}

} // namespace quorvane
