#include "platform/sheetqueue.h"

#include <algorithm>
#include <utility>

namespace quorvane {

SheetQueue::SheetQueue(NSOperationQueue &queue)
    : m_queue(queue)
    , m_self(std::make_shared<SheetQueue *>(this))
{ }

SheetQueue::~SheetQueue() = default;

void SheetQueue::begin(NSSheet &sheet, std::function<void(int code)> completion)
{
    Entry entry {&sheet, sheet.life(), std::move(completion), ++m_lastNumber};
    if (attachedSheet() == nullptr && m_waiting.empty() && !m_turnPending) {
        show(std::move(entry));
        return;
    }
    m_waiting.push_back(std::move(entry));
    if (attachedSheet() == nullptr) {
        beginNextLater();
    }
}

void SheetQueue::end(NSSheet &sheet, int code)
{
    if (attachedSheet() == &sheet) {
        sheet.endSheet(code);
        return;
    }
    const auto found = std::find_if(m_waiting.begin(), m_waiting.end(), [&](const Entry &entry) {
        return entry.sheet == &sheet && !entry.life.expired();
    });
    if (found == m_waiting.end()) {
        return;
    }
    const auto completion = std::move(found->completion);
    m_waiting.erase(found);
    if (completion) {
        completion(code);
    }
}

void SheetQueue::endAll(int code)
{
    const std::weak_ptr<SheetQueue *> self = m_self;
    const std::deque<Entry> waiting = std::exchange(m_waiting, {});
    if (NSSheet *sheet = attachedSheet()) {
        sheet->endSheet(code);
    }
    for (const Entry &entry : waiting) {
        if (!self.expired() && !entry.life.expired() && entry.completion) {
            entry.completion(code);
        }
    }
}

void SheetQueue::forgetWaiting()
{
    m_waiting.clear();
}

NSSheet *SheetQueue::attachedSheet() const
{
    return m_current.life.expired() ? nullptr : m_current.sheet;
}

void SheetQueue::putForward()
{
    if (NSSheet *sheet = attachedSheet()) {
        sheet->putForward();
    }
}

void SheetQueue::show(Entry entry)
{
    m_current = std::move(entry);
    const std::weak_ptr<SheetQueue *> self = m_self;
    m_current.sheet->beginSheet([self, number = m_current.number](int code) {
        if (const auto queue = self.lock()) {
            (*queue)->sheetEnded(number, code);
        }
    });
}

void SheetQueue::sheetEnded(quint64 number, int code)
{
    if (number != m_current.number) {
        return;
    }
    const Entry ended = std::exchange(m_current, Entry());
    beginNextLater();
    if (ended.completion) {
        ended.completion(code); // may be the end of this queue
    }
}

// Also while none waits: a sheet that the completion begins is to come on a later turn, too.
void SheetQueue::beginNextLater()
{
    if (m_turnPending) {
        return;
    }
    m_turnPending = true;
    const std::weak_ptr<SheetQueue *> self = m_self;
    m_queue.addOperation([self] {
        if (const auto queue = self.lock()) {
            (*queue)->beginNext();
        }
    });
}

void SheetQueue::beginNext()
{
    m_turnPending = false;
    while (attachedSheet() == nullptr && !m_waiting.empty()) {
        Entry next = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!next.life.expired()) {
            show(std::move(next));
            return;
        }
    }
}

} // namespace quorvane
