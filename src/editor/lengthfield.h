#pragma once

#include <QDoubleSpinBox>

namespace quorvane {

/// A field for a length in the unit that people here use: points, or centimetres or inches by the
/// locale. Its length is in a document's pixels.
class LengthField final : public QDoubleSpinBox
{
    Q_OBJECT

public:
    enum class Unit { Points, Local };

    explicit LengthField(Unit unit, QWidget *parent = nullptr);

    double length() const { return value() * m_pixels; }

    void setLength(double pixels) { setValue(pixels / m_pixels); }

    void setLengthRange(double least, double most) { setRange(least / m_pixels, most / m_pixels); }

    /// Whether it is inches that people here measure in.
    static bool measuresInInches();
    /// A length to be read: "2.5 cm".
    static QString textOf(double pixels);

private:
    double m_pixels;
};

} // namespace quorvane
