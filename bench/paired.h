#pragma once

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace quorvane {

/// Measures work of ours against the bare work that nobody can do without, by turns in one run, so
/// that whatever else the machine does falls on both. The benchmark's time is ours; its counters
/// give both medians in milliseconds and their ratio. To be registered with UseManualTime().
///
/// Each of the two is a callable that does the work once and returns whether it went well.
template <typename Bare, typename Ours>
void measurePaired(benchmark::State &state, Bare bare, Ours ours)
{
    using Milliseconds = std::chrono::duration<double, std::milli>;
    const auto timed = [&state](auto &work) {
        const auto start = std::chrono::steady_clock::now();
        const bool isDone = work();
        const Milliseconds time = std::chrono::steady_clock::now() - start;
        if (!isDone) {
            state.SkipWithError("the work failed");
        }
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
