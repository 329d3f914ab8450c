#include "richtext/fontnames.h"

#include <QLatin1StringView>
#include <QStringView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct FamilyName
{
    QLatin1StringView postScript; ///< Without the style.
    QLatin1StringView regular; ///< PostScript name of the regular face.
    QLatin1StringView family;
};

// Only families whose faces are told apart by name alone, so that the way there and back is one.
constexpr FamilyName familyNames[] = {
    {"Arial"_L1, "ArialMT"_L1, "Arial"_L1},
    {"ArialMT"_L1, "ArialMT"_L1, "Arial"_L1},
    {"AvenirNext"_L1, "AvenirNext-Regular"_L1, "Avenir Next"_L1},
    {"ComicSansMS"_L1, "ComicSansMS"_L1, "Comic Sans MS"_L1},
    {"CourierNewPS"_L1, "CourierNewPSMT"_L1, "Courier New"_L1},
    {"CourierNewPSMT"_L1, "CourierNewPSMT"_L1, "Courier New"_L1},
    {"GillSans"_L1, "GillSans"_L1, "Gill Sans"_L1},
    {"HelveticaNeue"_L1, "HelveticaNeue"_L1, "Helvetica Neue"_L1},
    {"LucidaGrande"_L1, "LucidaGrande"_L1, "Lucida Grande"_L1},
    {"MarkerFelt"_L1, "MarkerFelt-Thin"_L1, "Marker Felt"_L1},
    {"TimesNewRomanPS"_L1, "TimesNewRomanPSMT"_L1, "Times New Roman"_L1},
    {"TimesNewRomanPSMT"_L1, "TimesNewRomanPSMT"_L1, "Times New Roman"_L1},
    {"TrebuchetMS"_L1, "TrebuchetMS"_L1, "Trebuchet MS"_L1},
};

constexpr QLatin1StringView plainStyles[] = {
    "Bold"_L1,   "BoldItalic"_L1, "BoldItalicMT"_L1, "BoldMT"_L1,  "BoldOblique"_L1,
    "Italic"_L1, "ItalicMT"_L1,   "Oblique"_L1,      "Regular"_L1, "Roman"_L1,
};

constexpr QLatin1StringView otherStyles[] = {
    "Black"_L1,
    "BlackItalic"_L1,
    "CondensedBold"_L1,
    "DemiBold"_L1,
    "DemiBoldItalic"_L1,
    "Heavy"_L1,
    "HeavyItalic"_L1,
    "Light"_L1,
    "LightItalic"_L1,
    "Medium"_L1,
    "MediumItalic"_L1,
    "SemiBold"_L1,
    "SemiBoldItalic"_L1,
    "Thin"_L1,
    "ThinItalic"_L1,
    "UltraLight"_L1,
    "UltraLightItalic"_L1,
    "Wide"_L1,
};

template <std::size_t N> bool isOneOf(QStringView style, const QLatin1StringView (&styles)[N])
{
    return std::find(std::begin(styles), std::end(styles), style) != std::end(styles);
}

QStringView styleOf(QStringView name)
{
    const qsizetype dash = name.lastIndexOf(u'-');
    return dash > 0 ? name.sliced(dash + 1) : QStringView();
}

} // namespace

QString familyOfFontName(const QString &name)
{
    const QStringView style = styleOf(name);
    const bool styled = isOneOf(style, plainStyles) || isOneOf(style, otherStyles);
    const QStringView base =
        styled ? QStringView(name).chopped(style.size() + 1) : QStringView(name);
    const auto *known = std::find_if(std::begin(familyNames), std::end(familyNames),
                                     [base](const FamilyName &f) { return f.postScript == base; });
    return known != std::end(familyNames) ? QString(known->family) : base.toString();
}

bool fontNameIsPlain(const QString &name)
{
    const QStringView style = styleOf(name);
    return !isOneOf(style, otherStyles) || fontNameOfFamily(familyOfFontName(name)) == name;
}

QString fontNameOfFamily(const QString &family)
{
    const auto *known = std::find_if(std::begin(familyNames), std::end(familyNames),
                                     [&family](const FamilyName &f) { return f.family == family; });
    return known != std::end(familyNames) ? QString(known->regular) : family;
}

} // namespace quorvane
