#pragma once

#include "platform/nsoperationqueue.h"
#include "platform/nswindow.h"

#include <deque>
#include <functional>
#include <memory>

namespace quorvane {

/// The sheets of one window: one is up at a time, in the order in which they were asked for, and
/// each next one begins on a later turn of the main loop. A sheet that dies while it waits is
/// forgotten, and so are all that wait when the queue dies; their completions never run.
class SheetQueue final
{
public:
    explicit SheetQueue(NSOperationQueue &queue);
    ~SheetQueue();
    SheetQueue(const SheetQueue &) = delete;
    SheetQueue &operator=(const SheetQueue &) = delete;

    /// \a completion runs once the sheet is gone; it may begin, end and destroy what it likes.
    void begin(NSSheet &sheet, std::function<void(int code)> completion);
    /// Ends the sheet that is up, or takes one out that waits. Nothing happens for any other.
    void end(NSSheet &sheet, int code);
    /// Ends the sheet that is up, and then those that waited behind it.
    void endAll(int code);
    /// Forgets the sheets that wait.
    void forgetWaiting();

    NSSheet *attachedSheet() const; ///< The one that is up; null while none is.
    void putForward(); ///< Nothing happens while none is up.

private:
    struct Entry
    {
        NSSheet *sheet = nullptr;
        std::weak_ptr<const void> life;
        std::function<void(int code)> completion;
        quint64 number = 0;
    };

    void show(Entry entry);
    void sheetEnded(quint64 number, int code);
    void beginNextLater();
    void beginNext();

    NSOperationQueue &m_queue;
    Entry m_current;
    std::deque<Entry> m_waiting;
    bool m_turnPending = false;
    quint64 m_lastNumber = 0;
    std::shared_ptr<SheetQueue *> m_self; // watched by what runs after the queue's death
};

} // namespace quorvane
