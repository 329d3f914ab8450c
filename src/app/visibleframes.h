#pragma once

#include <QProxyStyle>

namespace quorvane {

/// The frames of unticked boxes are seen on dark ground, too: the toolkit's own style draws them
/// darker than that.
class VisibleFrames final : public QProxyStyle
{
    Q_OBJECT

public:
    /// Puts it over the program's style, where it is the toolkit's own.
    static void apply();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;

private:
    using QProxyStyle::QProxyStyle;
};

} // namespace quorvane
