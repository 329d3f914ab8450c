#include "editor/lengthfield.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double pixelsPerInch = 96;
constexpr double pixelsPerCentimetre = pixelsPerInch / 2.54;
constexpr double pixelsPerPoint = pixelsPerInch / 72;

double localUnit()
{
    return LengthField::measuresInInches() ? pixelsPerInch : pixelsPerCentimetre;
}

QString localSuffix()
{
    return LengthField::measuresInInches() ? u"\u00a0in"_s : u"\u00a0cm"_s;
}

} // namespace

LengthField::LengthField(Unit unit, QWidget *parent)
    : QDoubleSpinBox(parent)
    , m_pixels(unit == Unit::Points ? pixelsPerPoint : localUnit())
{
    setDecimals(unit == Unit::Points ? 1 : 2);
    setSuffix(unit == Unit::Points ? u"\u00a0pt"_s : localSuffix());
    setSingleStep(unit == Unit::Points ? 1 : 0.25);
    setAlignment(Qt::AlignRight);
}

bool LengthField::measuresInInches()
{
    return QLocale().measurementSystem() == QLocale::ImperialUSSystem;
}

QString LengthField::textOf(double pixels)
{
    return QLocale().toString(pixels / localUnit(), 'f', 2) + localSuffix();
}

} // namespace quorvane
