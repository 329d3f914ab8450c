#pragma once

#include "platform/nsfont.h"
#include "platform/nswindow.h"

namespace quorvane {

class FakeToolbar final : public NSToolbar
{
public:
    bool isVisible() const override { return visible; }

    void setVisible(bool shows) override { visible = shows; }

    void setAutosavesConfiguration(bool saves) override { autosaves = saves; }

    bool visible = true;
    bool autosaves = true;
};

class FakeProgress final : public NSProgressIndicator
{
public:
    void setHidden(bool hides) override { hidden = hides; }

    void startAnimation() override { ++started; }

    void stopAnimation() override { ++stopped; }

    bool hidden = true;
    int started = 0;
    int stopped = 0;
};

class FakeSecureField final : public NSSecureTextField
{
public:
    QString stringValue() const override { return text; }

    void setStringValue(const QString &value) override { text = value; }

    QString text;
};

/// A machine with the fonts that the test names.
class FakeFontManager final : public NSFontManager
{
public:
    QStringList availableFontFamilies() const override { return families; }

    std::optional<NSFont> fontWithName(const QString &name, double size) const override
    {
        return families.contains(name) ? std::optional(NSFont {name, size}) : std::nullopt;
    }

    void setEnabled(bool enables) override { enabled = enables; }

    bool isEnabled() const override { return enabled; }

    QStringList families {QStringLiteral("Helvetica")};
    bool enabled = true;
};

} // namespace quorvane
