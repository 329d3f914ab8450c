#pragma once

#include "platform/nsfont.h"

namespace quorvane {

/// The fonts of the machine. A name counts as available where a family has it, or where fontconfig
/// holds an installed family for the same by it (Helvetica for a metric-compatible one); the font
/// keeps the name that was asked for.
class QtFontManager final : public NSFontManager
{
public:
    QStringList availableFontFamilies() const override;
    std::optional<NSFont> fontWithName(const QString &name, double size) const override;

    void setEnabled(bool enabled) override { m_enabled = enabled; }

    bool isEnabled() const override { return m_enabled; }

private:
    bool m_enabled = true;
};

} // namespace quorvane
