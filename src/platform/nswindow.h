#pragma once

#include "platform/nsalert.h"
#include "platform/nsvalues.h"

#include <QString>

#include <functional>
#include <memory>

namespace quorvane {

/// What an ended sheet answers where nothing else is said (the platform's NSModalResponseStop).
constexpr int modalResponseStop = 1000;

/// A dialog that can be attached to a window. One that dies while it is up tells \a ended first.
class NSSheet
{
public:
    NSSheet() = default;
    NSSheet(const NSSheet &) = delete;
    NSSheet &operator=(const NSSheet &) = delete;
    virtual ~NSSheet() = default;
    /// Shows the sheet on its window. \a ended is called exactly once, with the code of what ended
    /// it: a button, Escape, the window manager, or endSheet.
    virtual void beginSheet(std::function<void(int code)> ended) = 0;
    virtual void endSheet(int code) = 0;
    /// Brings the sheet that is up before its window again, with the keyboard.
    virtual void putForward() = 0;

    std::weak_ptr<const void> life() const { return m_life; } ///< Expires with the sheet.

private:
    std::shared_ptr<const int> m_life = std::make_shared<const int>(); // shared with none: watched
};

/// Something that can hold the keyboard focus.
class NSResponder
{
public:
    virtual ~NSResponder() = default;
    virtual void becomeFirstResponder() = 0;
};

/// A window of a document. Sheets and alerts share one queue: one is up at a time, the next one
/// begins on a later turn of the main loop.
class NSWindow
{
public:
    virtual ~NSWindow() = default;

    virtual NSRect frame() const = 0;
    virtual NSSize minSize() const = 0; ///< Of the frame, decorations included.
    virtual void setFrame(const NSRect &frame, bool animate) = 0;
    virtual void setMaxSize(const NSSize &size) = 0;
    virtual void setShowsResizeIndicator(bool shows) = 0;
    virtual void center() = 0;

    virtual void makeKeyAndOrderFront() = 0;
    virtual void makeFirstResponder(NSResponder &responder) = 0;
    virtual bool isVisible() const = 0;
    virtual void close() = 0;
    virtual void setTitle(const QString &title) = 0;
    virtual void setDocumentEdited(bool edited) = 0;

    virtual void beginSheet(NSSheet &sheet, std::function<void(int code)> completion) = 0;
    virtual void endSheet(NSSheet &sheet, int returnCode = modalResponseStop) = 0;
    /// Ends the sheet that is up and those that wait behind it, with modalResponseStop.
    virtual void endSheets() = 0;
    virtual void beginAlert(const NSAlert &alert, AlertCompletion completion) = 0;
    virtual NSSheet *attachedSheet() const = 0; ///< Null while none is up.
};

/// What a window tells its document.
struct WindowEvents
{
    std::function<void()> becameKey; ///< It has the keyboard, and no sheet has it in its place.
    std::function<void()> closeRequested; ///< The user wants it closed; it stays until it is.
};

class NSToolbar
{
public:
    virtual ~NSToolbar() = default;
    virtual bool isVisible() const = 0;
    virtual void setVisible(bool visible) = 0;
    virtual void setAutosavesConfiguration(bool autosaves) = 0;
};

class NSProgressIndicator
{
public:
    virtual ~NSProgressIndicator() = default;
    virtual void setHidden(bool hidden) = 0;
    virtual void startAnimation() = 0;
    virtual void stopAnimation() = 0;
};

class NSSecureTextField
{
public:
    virtual ~NSSecureTextField() = default;
    virtual QString stringValue() const = 0;
    virtual void setStringValue(const QString &text) = 0;
};

} // namespace quorvane
