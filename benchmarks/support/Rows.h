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

/// Registers one timed row. Rows that differ in the subject alone do the same work and are compared
/// in the report. The size counts what the work grows with, mostly nodes.
Row* addRow(const std::string& topic, const std::string& work, const std::string& subject, int size,
            std::function<void(benchmark::State&)> run);

/// Aborts with a message unless both answers are equal: what answers differently does different
/// work, and timing it would tell nothing.
void requireSame(bool same, const char* what);

template<typename A, typename B>
void requireEqual(const A& a, const B& b, const char* what)
{
    requireSame(a == b, what);
}

/// Makes something once for every size and keeps it: repetitions share it, and so do all subjects
/// of a row.
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

/// Times `build`, which returns what it built, without the time of destroying that again.
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

/// Times `work` on something that `prepare` makes afresh, untimed, for every iteration.
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
