#pragma once

#include "platform/nstextview.h"

#include <functional>

namespace quorvane {

class TextEditor;

/// What the document switches in its editor. A switch that is not there is taken and does nothing.
struct EditorSwitches
{
    std::function<void(bool)> ruler;
    std::function<void(bool)> spelling;
    std::function<void(bool)> adaptiveColours;
    std::function<void(double done)> reading; ///< How much of a body is read, from 0 to 1.
};

/// The editor as its document sees it: bytes in, bytes out. What nobody edited goes out as the very
/// bytes that came in, and a text is serialised once for each state that is asked for.
class EditorView final : public NSTextView
{
public:
    explicit EditorView(TextEditor &editor);

    void becomeFirstResponder() override;
    bool setBody(const std::optional<QByteArray> &body) override;
    std::optional<QByteArray> body() const override;
    bool isEdited() const override;
    void markUnedited() override;

    bool isRichText() const override { return !m_isTooTall; }

    qsizetype length() const override;
    bool setAttributes(const std::optional<NSFont> &font) override;
    NSParagraphStyle defaultParagraphStyle() const override;
    void setDefaultParagraphStyle(const NSParagraphStyle &style) override;
    void setTypingAttributes(const std::optional<NSFont> &font) override;
    void setRulerVisible(bool visible) override;
    void setContinuousSpellCheckingEnabled(bool enabled) override;
    void setUsesAdaptiveColorMappingForDarkAppearance(bool adapts) override;

    EditorSwitches switches;

    /// The body is longer than the editor can show: it is kept, and the editor stands empty.
    bool isTooTall() const { return m_isTooTall; }

    /// The body says more of its text than the editor keeps once the text is edited.
    bool holdsSurplus() const { return m_holdsSurplus; }

private:
    TextEditor &m_editor;
    // The bytes that stand for the editor's content at m_revision; filled when they are asked for.
    mutable std::optional<QByteArray> m_body;
    mutable int m_revision = -1;
    bool m_isTooTall = false;
    bool m_holdsSurplus = false;
};

} // namespace quorvane
