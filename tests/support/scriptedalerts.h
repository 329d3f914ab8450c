#pragma once

#include "platform/nsalert.h"

#include <QList>

#include <deque>
#include <utility>

namespace quorvane {

/// Alerts of the program that are answered by script, at once; one without an answer stays up.
class ScriptedAlerts final : public ModalAlerts
{
public:
    void runModal(const NSAlert &alert, AlertCompletion completion) override
    {
        shown.append(alert);
        m_completions.push_back(std::move(completion));
        if (!answers.empty()) {
            const AlertAnswer next = answers.front();
            answers.pop_front();
            answer(next);
        }
    }

    /// Answers the oldest alert that is up. \return false where there is none.
    bool answer(AlertAnswer given)
    {
        if (m_completions.empty()) {
            return false;
        }
        const auto completion = std::move(m_completions.front());
        m_completions.pop_front();
        if (completion) {
            completion(given);
        }
        return true;
    }

    QList<NSAlert> shown; ///< Word for word.
    std::deque<AlertAnswer> answers;

private:
    std::deque<AlertCompletion> m_completions;
};

} // namespace quorvane
