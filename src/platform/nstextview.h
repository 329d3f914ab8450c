#pragma once

#include "platform/nsfont.h"
#include "platform/nswindow.h"

#include <QByteArray>

#include <optional>

namespace quorvane {

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

    virtual void setTypingAttributes(const std::optional<NSFont> &font) = 0;
    virtual void setRulerVisible(bool visible) = 0;
    virtual void setContinuousSpellCheckingEnabled(bool enabled) = 0;
    virtual void setUsesAdaptiveColorMappingForDarkAppearance(bool adapts) = 0;
};

} // namespace quorvane
