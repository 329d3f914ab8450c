#pragma once

#include "platform/nswindow.h"

#include <utility>

namespace quorvane {

/// A sheet that the test ends, as a user would with \a endSheet.
class ScriptedSheet : public NSSheet
{
public:
    ~ScriptedSheet() override { endSheet(modalResponseStop); }

    void beginSheet(std::function<void(int code)> ended) override
    {
        ++begun;
        m_ended = std::move(ended);
    }

    void endSheet(int code) override
    {
        if (const auto ended = std::exchange(m_ended, nullptr)) {
            lastCode = code;
            ended(code);
        }
    }

    void putForward() override { ++putForwards; }

    bool isUp() const { return static_cast<bool>(m_ended); }

    int begun = 0;
    int putForwards = 0;
    int lastCode = 0; ///< Of the last end; 0 before.

private:
    std::function<void(int code)> m_ended;
};

} // namespace quorvane
