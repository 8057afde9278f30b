// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Core.h>

#include <QtCore/QtGlobal>

#include <benchmark/benchmark.h>

// The main function of every benchmark program. The context contains the versions for the report.
int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::AddCustomContext("libOrvCore",
                                Kestrin::Orv::CoreVersions::getVersion().toStdString());
    benchmark::AddCustomContext("compiler", ORV_BENCH_COMPILER);
    benchmark::AddCustomContext("Qt", qVersion());
    benchmark::AddCustomContext("Google Benchmark", ORV_BENCH_BENCHMARK);
    benchmark::AddCustomContext("Boost", ORV_BENCH_BOOST);
    benchmark::AddCustomContext("oneTBB", ORV_BENCH_TBB);
    benchmark::AddCustomContext("prometheus-cpp", ORV_BENCH_PROMETHEUS);
    const std::size_t numRun = benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return numRun > 0 ? 0 : 1;
}
