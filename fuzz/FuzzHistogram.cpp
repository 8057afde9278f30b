// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include "oracle/MessageSink.h"

#include <Kestrin/Orv/HistogramFrameTimes.h>

#include <map>

using Kestrin::Orv::HistogramFrameTimes;

namespace {

class Model
{
public:
    void add(std::uint32_t us)
    {
        const std::uint32_t bucket = us / 500 * 500;
        if (bucket > 1000000)
            return;
        if (total > 60000000)
            clear();
        const std::uint32_t counted = ++buckets[bucket];
        if (counted > peakCount) {
            peakCount = counted;
            peakBucket = bucket;
        }
        ++frames;
        total += bucket;
        minimum = bucket < minimum ? bucket : minimum;
    }

    void clear() { *this = Model(); }

    std::vector<QString> dump() const
    {
        std::vector<QString> lines;
        if (frames == 0)
            return lines;
        lines.push_back(
            QString::asprintf("debug TIME DUMP %6u frames %6u us %6u us", frames, total, minimum));
        for (const auto& [bucket, count] : buckets) {
            const char mark = bucket == peakBucket ? '<' : count > peakCount / 10 ? '|' : ' ';
            lines.push_back(QString::asprintf("debug       %6u us %6u %c", bucket, count, mark));
        }
        return lines;
    }

private:
    std::map<std::uint32_t, std::uint32_t> buckets;
    std::uint32_t frames = 0, total = 0, minimum = 1000000, peakBucket = 0, peakCount = 0;
};

/// Writes each full minute before it is cleared, as a host may do.
class Dumping : public HistogramFrameTimes
{
public:
    void flush() override
    {
        dump();
        clear();
    }
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    MessageSink sink;
    Bytes bytes(data, size);
    HistogramFrameTimes histogram;
    Dumping dumping;
    Model model;
    for (int calls = 0; calls < 300 && !bytes.empty(); ++calls) {
        const int op = bytes.byte();
        std::vector<QString> expected;
        if (op < 200) {
            const std::uint32_t us = op < 100 ? bytes.byte() * 4000u
                : op < 150                    ? 999000 + bytes.byte() * 10u
                                              : bytes.word();
            // A burst fills the minute with few bytes.
            for (int i = 0, n = op % 4 == 0 ? 100 : 1; i < n; ++i) {
                histogram.addFrameTimeUS(us);
                dumping.addFrameTimeUS(us);
                model.add(us);
            }
            sink.messages.clear();
        } else if (op < 210) {
            histogram.clear();
            dumping.clear();
            model.clear();
        } else if (op < 215) {
            histogram.flush();
            dumping.flush();
            model.clear();
            sink.messages.clear();
        } else {
            histogram.dump();
            expect(sink.messages == model.dump(), "the dump differs");
            sink.messages.clear();
            dumping.dump();
            expect(sink.messages == model.dump(), "the dump of the derived class differs");
            sink.messages.clear();
        }
    }
    return 0;
}
