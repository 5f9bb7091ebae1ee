#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <vector>

/// Seconds that something took: of this process's processor time, and on the clock.
struct Lap
{
    double processor = 0;
    double clock = 0;
};

template <typename Work>
Lap timed(Work work)
{
    const auto clockBefore = std::chrono::steady_clock::now();
    const std::clock_t before = std::clock();
    work();
    const std::clock_t after = std::clock();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - clockBefore;
    return {double(after - before) / CLOCKS_PER_SEC, passed.count()};
}

inline double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The program's way of doing something and the bare engine's, taken in turns within one run, so that whatever else the
/// machine does meets both alike. The counters tell the medians and their ratio.
class Beside
{
public:
    /// @param calls how many of the thing one turn does
    explicit Beside(benchmark::State& state, int calls = 1)
        : state_(state)
        , calls_(calls)
    {}
    ~Beside()
    {
        const Lap ours = medianOf(ours_);
        const Lap bare = medianOf(bare_);
        state_.counters["ours_us"] = ours.processor * 1e6 / calls_;
        state_.counters["bare_us"] = bare.processor * 1e6 / calls_;
        state_.counters["ratio"] = ours.processor / bare.processor;
        state_.counters["clock_ratio"] = ours.clock / bare.clock;
    }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;

    template <typename Ours, typename Bare>
    void turn(Ours ours, Bare bare)
    {
        ours_.push_back(timed(ours));
        bare_.push_back(timed(bare));
        state_.SetIterationTime(ours_.back().clock);
    }

    Lap ours() const { return medianOf(ours_); }
    Lap bare() const { return medianOf(bare_); }

private:
    static Lap medianOf(const std::vector<Lap>& laps)
    {
        std::vector<double> processor;
        std::vector<double> clock;
        for (const Lap& lap : laps) {
            processor.push_back(lap.processor);
            clock.push_back(lap.clock);
        }
        return {median(std::move(processor)), median(std::move(clock))};
    }

    benchmark::State& state_;
    int calls_;
    std::vector<Lap> ours_;
    std::vector<Lap> bare_;
};
