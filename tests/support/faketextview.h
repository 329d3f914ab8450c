#pragma once

#include "platform/nstextview.h"

#include <utility>

namespace quorvane {

/// An editor that holds bytes; \a type stands for the user's typing.
class FakeTextView final : public NSTextView
{
public:
    bool setBody(const std::optional<QByteArray> &body) override
    {
        ++bodiesSet;
        if (isTooTall) {
            return false;
        }
        if (m_body != body) {
            m_body = body;
            m_edited = false;
        }
        return true;
    }

    std::optional<QByteArray> body() const override { return m_body; }

    bool isEdited() const override { return m_edited; }

    void markUnedited() override { m_edited = false; }

    void becomeFirstResponder() override { ++focused; }

    void setTypingAttributes(const std::optional<NSFont> &font) override { typingFont = font; }

    void setRulerVisible(bool visible) override { rulerVisible = visible; }

    void setContinuousSpellCheckingEnabled(bool enabled) override { checksSpelling = enabled; }

    void setUsesAdaptiveColorMappingForDarkAppearance(bool adapts) override
    {
        adaptsColors = adapts;
    }

    void type(QByteArray body)
    {
        m_body = std::move(body);
        m_edited = true;
    }

    bool isTooTall = false; ///< Refuses what is set.
    int bodiesSet = 0;
    int focused = 0;
    std::optional<NSFont> typingFont;
    bool rulerVisible = false;
    bool checksSpelling = false;
    bool adaptsColors = false;

private:
    std::optional<QByteArray> m_body;
    bool m_edited = false;
};

} // namespace quorvane
