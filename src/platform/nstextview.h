#pragma once

#include "platform/nsfont.h"
#include "platform/nswindow.h"

#include <QByteArray>

#include <optional>

namespace quorvane {

/// How paragraphs stand that say nothing of their own.
struct NSParagraphStyle
{
    double defaultTabInterval = 0; ///< In pixels of the text.
    bool operator==(const NSParagraphStyle &) const = default;
};

/// The editor as the document sees it: the view of its body and some switches.
class NSTextView : public NSResponder
{
public:
    /// Shows another body. Setting the very bytes that the editor stands for leaves text, undo,
    /// caret and scroll place as they are. \return false where the body is too tall to be shown.
    virtual bool setBody(const std::optional<QByteArray> &body) = 0;
    /// What the editor holds: the very bytes that were set while nobody has edited them, else the
    /// serialised text; nothing where no body was set and nothing was typed.
    virtual std::optional<QByteArray> body() const = 0;

    virtual bool isEdited() const = 0; ///< Differs from what was last set or marked unedited.
    virtual void markUnedited() = 0; ///< The text as it stands is what the file holds.

    /// Whether the text has styles; not so where the body cannot be shown and stays as it is.
    virtual bool isRichText() const = 0;
    virtual qsizetype length() const = 0; ///< Of the text, in UTF-16 units.
    /// Takes all attributes from the text and gives it the font, or none. The characters stay, and
    /// so does isEdited; it cannot be undone. \return false, with nothing changed, where the text
    /// would be too tall to be shown.
    [[nodiscard]] virtual bool setAttributes(const std::optional<NSFont> &font) = 0;
    virtual NSParagraphStyle defaultParagraphStyle() const = 0;
    virtual void setDefaultParagraphStyle(const NSParagraphStyle &style) = 0;

    /// The look of what is typed next; nothing leaves the font alone.
    virtual void setTypingAttributes(const std::optional<NSFont> &font) = 0;
    virtual void setRulerVisible(bool visible) = 0;
    virtual void setContinuousSpellCheckingEnabled(bool enabled) = 0;
    virtual void setUsesAdaptiveColorMappingForDarkAppearance(bool adapts) = 0;
};

/// The view of a text without styles, as the document sees it.
class NSPlainTextView
{
public:
    virtual ~NSPlainTextView() = default;
    virtual void setUsesFontPanel(bool uses) = 0;
    virtual void setUsesRuler(bool uses) = 0;
};

} // namespace quorvane
