// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_BENCHMARKS_ROWS_H
#define ORV_BENCHMARKS_ROWS_H

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace OrvBench {

using Row = benchmark::internal::Benchmark;

/// Registers one timed row. Rows that differ only in the subject do the same work, and the report
/// compares them. The size is the number that the work grows with, mostly nodes.
Row* addRow(const std::string& topic, const std::string& work, const std::string& subject, int size,
            std::function<void(benchmark::State&)> run);

/// Aborts with a message unless both results are equal: subjects with different results do
/// different work, and comparing their times would be useless.
void requireSame(bool same, const char* what);

template<typename A, typename B>
void requireEqual(const A& a, const B& b, const char* what)
{
    requireSame(a == b, what);
}

/// Makes an object once for every size and keeps it. All repetitions and all subjects of a row
/// share it.
template<typename T>
class Cache
{
public:
    template<typename Make>
    T& get(const std::string& key, Make make)
    {
        std::unique_ptr<T>& slot = entries[key];
        if (!slot)
            slot = make();
        return *slot;
    }

private:
    std::map<std::string, std::unique_ptr<T>> entries;
};

/// Times `build`, which returns an object. Does not time the destruction of that object.
template<typename Build>
void timeBuild(benchmark::State& state, Build build)
{
    for (auto _ : state) {
        auto built = build();
        benchmark::DoNotOptimize(built);
        state.PauseTiming();
        {
            auto destroyed = std::move(built);
        }
        state.ResumeTiming();
    }
}

/// Times `work` on a new object for every iteration. `prepare` makes the object and is not timed.
template<typename Prepare, typename Work>
void timeOnFresh(benchmark::State& state, Prepare prepare, Work work)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto fresh = prepare();
        state.ResumeTiming();
        work(*fresh);
        benchmark::ClobberMemory();
        state.PauseTiming();
        fresh.reset();
        state.ResumeTiming();
    }
}

} // namespace OrvBench

#endif
