#include "platform_qt/qtwindow.h"

#include "platform_qt/alertdialog.h"
#include "platform_qt/dialogsheet.h"

#include <QEvent>
#include <QMetaObject>
#include <QPointer>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

QtWindow::QtWindow(QWidget &widget, NSOperationQueue &queue)
    : m_widget(widget)
    , m_placement(widget)
    , m_sheets(queue)
{
    widget.installEventFilter(this);
}

void QtWindow::setCloseRequested(std::function<void()> requested)
{
    m_closeRequested = std::move(requested);
}

NSRect QtWindow::frame() const
{
    return m_placement.frame();
}

NSSize QtWindow::minSize() const
{
    return m_placement.minSize();
}

void QtWindow::setFrame(const NSRect &frame, bool animate)
{
    m_placement.setFrame(frame, animate);
}

void QtWindow::setMaxSize(const NSSize &size)
{
    m_placement.setMaxSize(size);
}

// The border that resizes belongs to the window manager, which follows the greatest size.
void QtWindow::setShowsResizeIndicator(bool)
{ }

void QtWindow::center()
{
    m_placement.center();
}

void QtWindow::makeKeyAndOrderFront()
{
    if (m_widget.isMinimized()) {
        m_widget.setWindowState(m_widget.windowState() & ~Qt::WindowMinimized);
    }
    m_widget.show();
    m_widget.raise();
    m_widget.activateWindow();
    m_sheets.putForward();
}

void QtWindow::makeFirstResponder(NSResponder &responder)
{
    responder.becomeFirstResponder();
}

bool QtWindow::isVisible() const
{
    return m_widget.isVisible();
}

void QtWindow::close()
{
    // Qt destroys the dialogs of a closed window without a word to those who wait for an answer.
    const QPointer<QtWindow> self(this);
    m_sheets.forgetWaiting();
    if (NSSheet *sheet = m_sheets.attachedSheet()) {
        m_sheets.end(*sheet, modalResponseStop);
    }
    if (!self) {
        return;
    }
    m_sheets.forgetWaiting(); // what the completion began
    m_isClosing = true;
    m_widget.close();
    if (self) {
        m_isClosing = false;
    }
}

void QtWindow::setTitle(const QString &title)
{
    // Doubled, the mark stands for itself.
    m_widget.setWindowTitle(QString(title).replace("[*]"_L1, "[*][*]"_L1) + "[*]"_L1);
}

void QtWindow::setDocumentEdited(bool edited)
{
    m_widget.setWindowModified(edited);
}

void QtWindow::beginSheet(NSSheet &sheet, std::function<void(int code)> completion)
{
    m_sheets.begin(sheet, [self = QPointer(this), completion = std::move(completion)](int code) {
        if (completion) {
            completion(code);
        }
        if (self) {
            self->settleKeyLater();
        }
    });
}

void QtWindow::endSheet(NSSheet &sheet, int returnCode)
{
    m_sheets.end(sheet, returnCode);
}

void QtWindow::beginAlert(const NSAlert &alert, AlertCompletion completion)
{
    auto *dialog = new AlertDialog(alert, &m_widget);
    auto *sheet = new DialogSheet(*dialog);
    beginSheet(*sheet, [dialog, completion = std::move(completion)](int code) {
        dialog->deleteLater();
        if (completion) {
            completion(static_cast<AlertAnswer>(code));
        }
    });
}

NSSheet *QtWindow::attachedSheet() const
{
    return m_sheets.attachedSheet();
}

void QtWindow::settleKeyLater()
{
    QMetaObject::invokeMethod(this, &QtWindow::settleKey, Qt::QueuedConnection);
}

// Window managers give a blocked window the keyboard all the same when it is clicked: the sheet
// gets it back. And a window can get it while its sheet is just going: that is told once it is
// gone.
void QtWindow::settleKey()
{
    if (m_sheets.attachedSheet() != nullptr) {
        if (m_owesKey) {
            m_sheets.putForward();
        }
    } else if (std::exchange(m_owesKey, false) && m_widget.isActiveWindow()) {
        Q_EMIT becameKey();
    }
}

bool QtWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate) {
        if (m_sheets.attachedSheet() == nullptr) {
            m_owesKey = false;
            Q_EMIT becameKey();
        } else {
            m_owesKey = true;
            settleKeyLater();
        }
    } else if (event->type() == QEvent::WindowDeactivate) {
        m_owesKey = false;
    }
    if (event->type() == QEvent::Close && m_closeRequested && !m_isClosing) {
        event->ignore();
        m_closeRequested();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace quorvane
