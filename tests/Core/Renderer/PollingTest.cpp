// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/LightPass.h"
#include "support/RecordingPass.h"

#include <gtest/gtest.h>

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <vector>

using namespace Kestrin::Orv;

namespace {

/// How long this thread has been asked to sleep, in nanoseconds, once for each time.
thread_local std::vector<std::int64_t> sleeps;

} // namespace

/// Takes the place of the C library's in this executable, for Qt too.
extern "C" int nanosleep(const timespec* wanted, timespec* left)
{
    sleeps.push_back(std::int64_t{1000000000} * wanted->tv_sec + wanted->tv_nsec);
    return static_cast<int>(syscall(SYS_nanosleep, wanted, left));
}

TEST(Polling, EachPollOfAnUnfinishedPassIsFollowedBy100MicrosecondsOfSleep)
{
    Scene s;
    const int a = s.chain(1);
    s.at(a).unfinishedPolls = 100;
    s.setup();
    sleeps.clear();
    s.render();
    EXPECT_EQ(sleeps, std::vector<std::int64_t>(100, 100 * 1000));
}

TEST(Polling, FinishedPassesAreNotWaitedFor)
{
    // These do not override isFinished().
    Renderer renderer;
    const int passes = 20;
    for (int i = 0; i < passes; ++i) {
        const int node = renderer.addPass(QString(), new LightPass(0, 1), 0);
        renderer.getGraph()->addUpEdge(renderer.addOutput(QString()), node, 0);
    }
    renderer.setup(nullptr);
    sleeps.clear();
    renderer.render(nullptr);
    EXPECT_EQ(renderer.getNumPasses(), passes);
    EXPECT_EQ(sleeps, std::vector<std::int64_t>());
}
