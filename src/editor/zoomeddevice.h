#pragma once

#include <QPaintDevice>

namespace quorvane {

/// What a text is laid out for when it is shown larger or smaller than it is: a screen of another
/// resolution. Fonts, indents, tab stops and tables all follow it, and the document stays as it is.
class ZoomedDevice final : public QPaintDevice
{
public:
    /// Its measures are those of \a screen, which outlives it.
    explicit ZoomedDevice(const QPaintDevice &screen)
        : m_screen(screen)
    { }

    double zoom() const { return m_zoom; }

    void setZoom(double zoom) { m_zoom = zoom; }

    QPaintEngine *paintEngine() const override { return nullptr; } // nothing is drawn here

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmDpiX:
            return qRound(m_screen.logicalDpiX() * m_zoom);
        case PdmDpiY:
            return qRound(m_screen.logicalDpiY() * m_zoom);
        case PdmWidth:
            return m_screen.width();
        case PdmHeight:
            return m_screen.height();
        default:
            return QPaintDevice::metric(metric);
        }
    }

private:
    const QPaintDevice &m_screen;
    double m_zoom = 1;
};

} // namespace quorvane
