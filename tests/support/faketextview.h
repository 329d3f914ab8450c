#pragma once

#include "platform/nstextview.h"

#include <QStringList>

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

    bool isRichText() const override { return isRich; }

    qsizetype length() const override { return m_body ? m_body->size() : 0; }

    bool setAttributes(const std::optional<NSFont> &font) override
    {
        calls << QStringLiteral("setAttributes");
        textFont = font;
        return !isTooTall;
    }

    NSParagraphStyle defaultParagraphStyle() const override { return paragraphs; }

    void setDefaultParagraphStyle(const NSParagraphStyle &style) override
    {
        calls << QStringLiteral("setDefaultParagraphStyle");
        paragraphs = style;
    }

    void setTypingAttributes(const std::optional<NSFont> &font) override
    {
        calls << QStringLiteral("setTypingAttributes");
        typingFont = font;
    }

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

    QStringList calls; ///< What changed the look, in order.
    bool isRich = true;
    std::optional<NSFont> textFont;
    NSParagraphStyle paragraphs {80};
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

class FakeNoteView final : public NSPlainTextView
{
public:
    void setUsesFontPanel(bool uses) override { usesFontPanel = uses; }

    void setUsesRuler(bool uses) override { usesRuler = uses; }

    bool usesFontPanel = true;
    bool usesRuler = true;
};

} // namespace quorvane
