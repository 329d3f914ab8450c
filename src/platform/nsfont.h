#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace quorvane {

/// A font that the machine has, by family and point size.
struct NSFont
{
    QString family;
    double pointSize = 0;
    bool operator==(const NSFont &) const = default;
};

/// The one font manager of the program.
class NSFontManager
{
public:
    virtual ~NSFontManager() = default;
    /// The families of the machine, in no particular order.
    virtual QStringList availableFontFamilies() const = 0;
    /// Nothing where the name is no available font; the machine's aliases count as available.
    virtual std::optional<NSFont> fontWithName(const QString &name, double size) const = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual bool isEnabled() const = 0;
};

} // namespace quorvane
