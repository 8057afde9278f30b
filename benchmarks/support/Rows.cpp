// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Rows.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace OrvBench {

Row* addRow(const std::string& topic, const std::string& work, const std::string& subject, int size,
            std::function<void(benchmark::State&)> run)
{
    const std::string name = topic + '/' + work + '/' + subject + '/' + std::to_string(size);
    return benchmark::RegisterBenchmark(
        name.c_str(), [run = std::move(run)](benchmark::State& state) { run(state); });
}

void requireSame(bool same, const char* what)
{
    if (same)
        return;
    std::fprintf(stderr, "The answers of two subjects differ: %s\n", what);
    std::abort();
}

} // namespace OrvBench
