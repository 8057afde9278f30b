// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include "Inspect/Runtime/TimedScene.h"
#include "Inspect/Runtime/TraceFileReader.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

TEST(TraceFile, EmptyTraceIsAFile)
{
    const QJsonObject file = parsed(Trace(10).toTraceEvents());
    EXPECT_EQ(file[QLatin1String("displayTimeUnit")].toString(), QStringLiteral("ns"));
    const QJsonArray events = file[QLatin1String("traceEvents")].toArray();
    ASSERT_EQ(events.size(), 2);
    for (const QJsonValue& event : events)
        EXPECT_EQ(textOf(event.toObject(), "ph"), "M");
    EXPECT_EQ(textOf(events[0].toObject(), "name"), "process_name");
    EXPECT_EQ(textOf(events[1].toObject(), "name"), "thread_name");
}

TEST(TraceFile, HoldsTheseBytes)
{
    TimedScene s;
    const int node = s.pass("Blur \"2\"");
    s.scene.up(node, 0, s.scene.output());
    s.scene.setup();
    s.at(node).failStart = 4294967295u;
    s.frame();
    EXPECT_EQ(s.trace.toTraceEvents().toStdString(),
              R"({"displayTimeUnit":"ns","otherData":{"droppedEvents":"0"},"traceEvents":[
{"ph":"M","pid":1,"tid":1,"name":"process_name","args":{"name":"Orv"}},
{"ph":"M","pid":1,"tid":1,"name":"thread_name","args":{"name":"Renderer"}},
{"ph":"X","pid":1,"tid":1,"cat":"setup","name":"Blur \"2\" setup","ts":0.000,"dur":0.010,"args":{}},
{"ph":"X","pid":1,"tid":1,"cat":"frame","name":"frame","ts":0.010,"dur":0.031,"args":{"frame":0}},
{"ph":"X","pid":1,"tid":1,"cat":"beginFrame","name":"Blur \"2\" beginFrame","ts":0.010,"dur":0.010,"args":{"frame":0}},
{"ph":"X","pid":1,"tid":1,"cat":"start","name":"Blur \"2\" start","ts":0.020,"dur":0.010,"args":{"frame":0}},
{"ph":"X","pid":1,"tid":1,"cat":"endFrame","name":"Blur \"2\" endFrame","ts":0.031,"dur":0.010,"args":{"frame":0,"errorCode":4294967295}}
]}
)");
}

TEST(TraceFile, TimesAreMicrosecondsToTheNanosecond)
{
    Timed t;
    for (const qint64 time : {0LL, 7LL, 42LL, 999LL, 1000LL, 1001LL, 3600000000123LL}) {
        t.time = 1000 + time;
        t.trace.beginFrame();
    }
    t.trace.endFrame();
    const QByteArray json = t.trace.toTraceEvents();
    for (const char* time : {"\"ts\":0.000,", "\"ts\":0.007,", "\"ts\":0.042,", "\"ts\":0.999,",
                             "\"ts\":1.000,", "\"ts\":1.001,", "\"ts\":3600000000.123,"}) {
        EXPECT_EQ(json.count(time), 1) << time;
    }
}

TEST(TraceFile, RequiredKeysAreThereAndEventsNest)
{
    TimedScene s;
    const int a = s.pass("A");
    const int b = s.pass("B");
    s.scene.edge(a, 0, b, 0);
    s.scene.up(b, 0, s.scene.output());
    s.trace.setDetail(Trace::EveryCall);
    s.at(a).unfinishedPolls = 2;
    s.scene.setup();
    for (int i = 0; i < 3; ++i)
        s.frame();
    const std::vector<QJsonObject> events = completeEvents(s.trace.toTraceEvents());
    EXPECT_EQ(static_cast<int>(events.size()), s.trace.numEvents());

    std::vector<double> ends; // of the events around
    double last = 0;
    for (const QJsonObject& event : events) {
        EXPECT_FALSE(textOf(event, "name").empty());
        EXPECT_FALSE(textOf(event, "cat").empty());
        EXPECT_EQ(numberOf(event, "pid"), 1);
        EXPECT_EQ(numberOf(event, "tid"), 1);
        EXPECT_TRUE(event[QLatin1String("args")].isObject());
        const double begin = numberOf(event, "ts");
        const double end = begin + numberOf(event, "dur");
        EXPECT_GE(begin, last);
        EXPECT_GE(end, begin);
        last = begin;
        const double tiny = 1e-6;
        while (!ends.empty() && ends.back() <= begin + tiny)
            ends.pop_back();
        if (!ends.empty()) {
            EXPECT_LE(end, ends.back() + tiny) << textOf(event, "name");
        }
        ends.push_back(end);
    }
}

TEST(TraceFile, NamesOfAllKindsAreReadBack)
{
    const QString names[] = {
        QStringLiteral("%1 %2 %%"),
        QStringLiteral("\\ \" / ]}"),
        QString(QChar(0)) + QChar(1) + QChar(31) + QLatin1Char('\n') + QChar(127),
        QString::fromUtf8("\xc3\xa4 \xe6\xbc\xa2 \xf0\x9f\x8e\xa8 \xe2\x80\xa8"),
        QString(),
    };
    Timed t;
    std::vector<std::unique_ptr<TracedPass>> passes;
    for (const QString& name : names) {
        passes.push_back(std::make_unique<TracedPass>(t.trace, name, nullptr));
        passes.back()->start(nullptr);
    }
    const std::vector<QJsonObject> events = completeEvents(t.trace.toTraceEvents());
    ASSERT_EQ(events.size(), std::size(names));
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(events[i][QLatin1String("name")].toString(),
                  names[i] + QLatin1String(names[i].isEmpty() ? "start" : " start"));
    }
}

TEST(TraceFile, HalvesOfCharactersAreReplaced)
{
    Timed t;
    TracedPass pass(t.trace, QString(QChar(0xd83c)) + QLatin1Char('x'), nullptr);
    pass.start(nullptr);
    const QByteArray json = t.trace.toTraceEvents();
    EXPECT_FALSE(json.contains("\\ud83c"));
    const QString read = completeEvents(json).at(0)[QLatin1String("name")].toString();
    EXPECT_TRUE(read.endsWith(QStringLiteral("x start")));
    EXPECT_FALSE(read.contains(QChar(0xd83c)));
}

TEST(TraceFile, NamesTheNumberOfDroppedEvents)
{
    Timed t(1);
    for (int i = 0; i < 4; ++i)
        t.trace.beginFrame();
    const QJsonObject file = parsed(t.trace.toTraceEvents());
    EXPECT_EQ(textOf(file[QLatin1String("otherData")].toObject(), "droppedEvents"), "3");
}

TEST(TraceFile, DeviceThatTakesNothingIsReported)
{
    QBuffer closed;
    EXPECT_FALSE(Trace(10).writeTraceEvents(closed));
    QBuffer open;
    open.open(QIODevice::WriteOnly);
    const Trace trace(10);
    EXPECT_TRUE(trace.writeTraceEvents(open));
    EXPECT_EQ(open.data(), trace.toTraceEvents());
}

TEST(TraceFile, LargeTraceIsWrittenInPieces)
{
    struct Sink : QIODevice
    {
        qint64 readData(char*, qint64) override { return -1; }
        qint64 writeData(const char*, qint64 size) override
        {
            largest = std::max(largest, size);
            total += size;
            return size;
        }
        qint64 largest = 0;
        qint64 total = 0;
    };
    Trace trace(100000);
    const auto pass = makePass(trace, "A");
    for (int i = 0; i < 100000; ++i)
        pass->start(nullptr);
    Sink sink;
    sink.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    EXPECT_TRUE(trace.writeTraceEvents(sink));
    EXPECT_GT(sink.total, 5000000);
    EXPECT_LT(sink.largest, 100000);
}

TEST(TraceFile, PiecesAfterOneThatWasNotTakenAreNotWritten)
{
    struct Full : QIODevice
    {
        qint64 readData(char*, qint64) override { return -1; }
        qint64 writeData(const char*, qint64) override { return ++calls == 1 ? -1 : 0; }
        int calls = 0;
    };
    Trace trace(10000);
    const auto pass = makePass(trace, "A");
    for (int i = 0; i < 10000; ++i)
        pass->start(nullptr);
    Full full;
    full.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    EXPECT_FALSE(trace.writeTraceEvents(full));
    EXPECT_EQ(full.calls, 1);
}
