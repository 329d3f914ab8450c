#include "platform_qt/qtfontmanager.h"

#include <QFontDatabase>

#include <memory>

#include <fontconfig/fontconfig.h>

namespace quorvane {

namespace {

using Pattern = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;

QString textOf(const FcValue &value)
{
    // The bytes of a string value are UTF-8.
    return value.type == FcTypeString ? QString::fromUtf8(reinterpret_cast<const char *>(value.u.s))
                                      : QString();
}

// The names that stand for the same font as this one. What fontconfig adds for any name, so that
// some font is found at all, is bound weakly and left out.
QStringList equalNames(const QString &name)
{
    QStringList names;
    const Pattern pattern(FcPatternCreate(), &FcPatternDestroy);
    const QByteArray utf8 = name.toUtf8();
    if (!pattern
        || !FcPatternAddString(pattern.get(), FC_FAMILY,
                               reinterpret_cast<const FcChar8 *>(utf8.constData()))
        || !FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern)) {
        return names;
    }
    FcValue value;
    FcValueBinding binding = FcValueBindingWeak;
    for (int index = 0; FcPatternGetWithBinding(pattern.get(), FC_FAMILY, index, &value, &binding)
         == FcResultMatch;
         ++index) {
        if (binding != FcValueBindingWeak) {
            names.append(textOf(value));
        }
    }
    return names;
}

} // namespace

QStringList QtFontManager::availableFontFamilies() const
{
    return QFontDatabase::families();
}

std::optional<NSFont> QtFontManager::fontWithName(const QString &name, double size) const
{
    if (name.isEmpty()) {
        return std::nullopt;
    }
    const QStringList families = availableFontFamilies();
    const QStringList candidates = QStringList(name) + equalNames(name);
    for (const QString &candidate : candidates) {
        // A family that several foundries offer is listed with the foundry in brackets.
        if (QFontDatabase::hasFamily(candidate)
            || families.contains(candidate, Qt::CaseInsensitive)) {
            return NSFont {name, size};
        }
    }
    return std::nullopt;
}

} // namespace quorvane
