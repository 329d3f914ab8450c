#pragma once

#include "platform/nswindow.h"
#include "platform/sheetqueue.h"
#include "platform_qt/windowplacement.h"

#include <QObject>
#include <QWidget>

namespace quorvane {

/// A document's window over a top-level widget. The widget's minimum size is that of the content.
class QtWindow final : public QObject, public NSWindow
{
    Q_OBJECT

public:
    /// The widget outlives the window, and is not deleted by being closed.
    QtWindow(QWidget &widget, NSOperationQueue &queue);

    QWidget &widget() const { return m_widget; }

    /// Asked when the user closes the window, which then stays. Without it the widget decides.
    void setCloseRequested(std::function<void()> requested);

    NSRect frame() const override;
    NSSize minSize() const override;
    void setFrame(const NSRect &frame, bool animate) override;
    void setMaxSize(const NSSize &size) override;
    void setShowsResizeIndicator(bool shows) override;
    void center() override;

    void makeKeyAndOrderFront() override;
    void makeFirstResponder(NSResponder &responder) override;
    bool isVisible() const override;
    /// Ends the sheet that is up and forgets those that wait.
    void close() override;
    void setTitle(const QString &title) override;
    void setDocumentEdited(bool edited) override;

    void beginSheet(NSSheet &sheet, std::function<void(int code)> completion) override;
    void endSheet(NSSheet &sheet, int returnCode) override;

    void endSheets() override { m_sheets.endAll(modalResponseStop); }

    void beginAlert(const NSAlert &alert, AlertCompletion completion) override;
    NSSheet *attachedSheet() const override;

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void becameKey(); ///< The window has the keyboard, and no sheet has it in its place.

private:
    void settleKey();
    void settleKeyLater();

    QWidget &m_widget;
    WindowPlacement m_placement;
    SheetQueue m_sheets;
    std::function<void()> m_closeRequested;
    bool m_isClosing = false;
    bool m_owesKey = false; // has become key under a sheet, and nobody was told
};

} // namespace quorvane
