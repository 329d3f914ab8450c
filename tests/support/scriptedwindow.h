#pragma once

#include "platform/nswindow.h"
#include "platform/sheetqueue.h"
#include "support/scriptedsheet.h"

#include <QList>
#include <QStringList>

#include <algorithm>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

namespace quorvane {

/// A window that records what is asked of it. Sheets and alerts go through a real sheet queue; an
/// alert is answered by script on a later turn, or else stays up until \a answer.
class ScriptedWindow final : public NSWindow
{
public:
    explicit ScriptedWindow(NSOperationQueue &queue)
        : m_queue(queue)
        , m_sheets(queue)
    { }

    NSRect frame() const override { return currentFrame; }

    NSSize minSize() const override { return minimumSize; }

    void setFrame(const NSRect &frame, bool animate) override
    {
        calls.append(animate ? QStringLiteral("setFrame animated") : QStringLiteral("setFrame"));
        frames.append(frame);
        currentFrame = frame;
        currentFrame.width = std::max(frame.width, minimumSize.width);
        currentFrame.height = std::max(frame.height, minimumSize.height);
    }

    void setMaxSize(const NSSize &size) override
    {
        calls.append(QStringLiteral("setMaxSize"));
        maxSize = size;
    }

    void setShowsResizeIndicator(bool shows) override
    {
        calls.append(QStringLiteral("setShowsResizeIndicator"));
        showsResizeIndicator = shows;
    }

    void center() override
    {
        calls.append(QStringLiteral("center"));
        ++centred;
    }

    void makeKeyAndOrderFront() override
    {
        calls.append(QStringLiteral("makeKeyAndOrderFront"));
        visible = true;
    }

    void makeFirstResponder(NSResponder &responder) override
    {
        calls.append(QStringLiteral("makeFirstResponder"));
        firstResponder = &responder;
        responder.becomeFirstResponder();
    }

    bool isVisible() const override { return visible; }

    void close() override
    {
        calls.append(QStringLiteral("close"));
        m_sheets.forgetWaiting();
        if (NSSheet *sheet = m_sheets.attachedSheet()) {
            m_sheets.end(*sheet, modalResponseStop);
        }
        isClosed = true;
        visible = false;
    }

    void setTitle(const QString &title) override { titles.append(title); }

    void setDocumentEdited(bool edited) override { isDocumentEdited = edited; }

    void beginSheet(NSSheet &sheet, std::function<void(int code)> completion) override
    {
        calls.append(QStringLiteral("beginSheet"));
        m_sheets.begin(sheet, std::move(completion));
    }

    void endSheet(NSSheet &sheet, int returnCode) override
    {
        calls.append(QStringLiteral("endSheet"));
        m_sheets.end(sheet, returnCode);
    }

    void endSheets() override { m_sheets.endAll(modalResponseStop); }

    void beginAlert(const NSAlert &alert, AlertCompletion completion) override
    {
        calls.append(QStringLiteral("beginAlert"));
        m_alertSheets.push_back(std::make_unique<AlertSheet>(*this, alert));
        m_sheets.begin(*m_alertSheets.back(), [completion = std::move(completion)](int code) {
            if (completion) {
                completion(static_cast<AlertAnswer>(code));
            }
        });
    }

    NSSheet *attachedSheet() const override { return m_sheets.attachedSheet(); }

    /// Ends the sheet or alert that is up. \return false where none is.
    bool answer(int code)
    {
        NSSheet *const sheet = m_sheets.attachedSheet();
        if (sheet != nullptr) {
            m_sheets.end(*sheet, code);
        }
        return sheet != nullptr;
    }

    bool answer(AlertAnswer given) { return answer(static_cast<int>(given)); }

    NSRect currentFrame {100, 100, 800, 600};
    NSSize minimumSize {420, 180};
    NSSize maxSize;
    bool showsResizeIndicator = true;
    bool isDocumentEdited = false;
    bool isClosed = false;
    bool visible = false;
    int centred = 0;
    NSResponder *firstResponder = nullptr;
    QList<NSRect> frames; ///< As they were asked for.
    QStringList titles;
    QStringList calls; ///< The names of the operations, in order.
    QList<NSAlert> alerts; ///< Those that were up, word for word.
    std::deque<AlertAnswer> answers; ///< For the alerts to come, in order.

private:
    class AlertSheet final : public ScriptedSheet
    {
    public:
        AlertSheet(ScriptedWindow &window, NSAlert alert)
            : m_window(window)
            , m_alert(std::move(alert))
        { }

        void beginSheet(std::function<void(int code)> ended) override
        {
            ScriptedSheet::beginSheet(std::move(ended));
            m_window.alertBegan(*this, m_alert);
        }

    private:
        ScriptedWindow &m_window;
        NSAlert m_alert;
    };

    void alertBegan(AlertSheet &sheet, const NSAlert &alert)
    {
        alerts.append(alert);
        if (answers.empty()) {
            return;
        }
        const int code = static_cast<int>(answers.front());
        answers.pop_front();
        m_queue.addOperation([life = sheet.life(), &sheet, code] {
            if (!life.expired()) {
                sheet.endSheet(code);
            }
        });
    }

    NSOperationQueue &m_queue;
    std::vector<std::unique_ptr<AlertSheet>> m_alertSheets;
    SheetQueue m_sheets; // dies before the sheets, so that none of them answers then
};

} // namespace quorvane
