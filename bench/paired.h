#pragma once

#include <algorithm>
#include <chrono>
#include <type_traits>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace quorvane {

/// Measures work of ours against the bare work that nobody can do without, by turns in one run, so
/// that whatever else the machine does falls on both. The benchmark's time is ours; its counters
/// give both medians in milliseconds and their ratio. To be registered with UseManualTime().
///
/// Each of the two is a callable that does the work once and returns whether it went well, or the
/// moment at which it was done, which may have been before the return. After each, \a clear makes
/// an end of what it left behind, off the clock.
template <typename Bare, typename Ours, typename Clear = void (*)()>
void measurePaired(
    benchmark::State &state, Bare bare, Ours ours, Clear clear = [] {})
{
    using Milliseconds = std::chrono::duration<double, std::milli>;
    const auto timed = [&](auto &work) {
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        const auto result = work();
        Clock::time_point end = Clock::now();
        if constexpr (std::is_same_v<decltype(work()), Clock::time_point>) {
            end = result;
        } else if (!result) {
            state.SkipWithError("the work failed");
        }
        const Milliseconds time = end - start;
        clear();
        return time.count();
    };
    const auto median = [](std::vector<double> times) {
        std::sort(times.begin(), times.end());
        const size_t half = times.size() / 2;
        return times.size() % 2 == 1 ? times.at(half) : (times.at(half - 1) + times.at(half)) / 2;
    };
    std::vector<double> bareTimes;
    std::vector<double> ourTimes;
    timed(bare); // the first time pays for caches
    timed(ours);
    bool isBareFirst = true;
    for (auto _ : state) {
        if (isBareFirst) {
            bareTimes.push_back(timed(bare));
            ourTimes.push_back(timed(ours));
        } else {
            ourTimes.push_back(timed(ours));
            bareTimes.push_back(timed(bare));
        }
        isBareFirst = !isBareFirst;
        state.SetIterationTime(ourTimes.back() / 1000);
    }
    if (ourTimes.empty()) {
        return;
    }
    state.counters["bare_ms"] = median(bareTimes);
    state.counters["ours_ms"] = median(ourTimes);
    state.counters["ratio"] = median(ourTimes) / median(bareTimes);
}

} // namespace quorvane
