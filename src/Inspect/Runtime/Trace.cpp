// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>

#include "Model/ValueText.h"
#include "Runtime/PassCast.h"
#include "Runtime/Recording.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QIODevice>

#include <charconv>
#include <iterator>
#include <limits>
#include <new>
#include <tuple>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// By kind.
const char* const kNames[] = {
    "frame",
    "wait",
    "setup",
    "beginFrame",
    "start",
    "skip",
    "endFrame",
    "teardown",
    "teardownContextData",
    "destructor",
    "isFinished",
    "numInputs",
    "numOutputs",
    "inputName",
    "outputName",
    "setInput",
    "defaultValue",
    "setDefaultValue",
    "output",
    "setNumOutputUsers",
    "resetNumOutputUsers",
    "errorCode",
    "clearErrorCode",
    "setErrorCode",
};
static_assert(std::size(kNames) == Recording::kNumKinds, "each kind has a name");

bool isKind(int kind)
{
    return kind >= 0 && kind < static_cast<int>(Recording::kNumKinds);
}

/// How long something took in a frame.
struct Sample
{
    int pass;
    qint64 time;
};

/// Sums up the samples of one pass, or of the frames, in ascending order of time.
TraceSummary summaryOf(const QString& name, const Sample* begin, const Sample* end)
{
    TraceSummary summary;
    summary.name = name;
    const auto count = end - begin;
    if (count == 0)
        return summary;
    const auto percentile = [begin, count](int percent) {
        return begin[(percent * count + 99) / 100 - 1].time;
    };
    summary.count = static_cast<int>(count);
    for (const Sample* sample = begin; sample != end; ++sample)
        summary.total += sample->time;
    summary.minimum = begin->time;
    summary.median = percentile(50);
    summary.percentile90 = percentile(90);
    summary.percentile99 = percentile(99);
    summary.maximum = end[-1].time;
    return summary;
}

void sort(std::vector<Sample>& samples)
{
    std::sort(samples.begin(), samples.end(), [](const Sample& a, const Sample& b) {
        return std::tie(a.pass, a.time) < std::tie(b.pass, b.time);
    });
}

} // namespace

const int Trace::kDefaultCapacity;

Trace::Trace()
    : Trace(kDefaultCapacity)
{
}

Trace::Trace(int capacity, const Clock& clock)
    : recording(std::make_shared<Recording>(capacity, clock))
{
}

Trace::~Trace()
{
    recording->close();
}

void Trace::setDetail(Detail detail)
{
    recording->detail = detail;
}

Trace::Detail Trace::detail() const
{
    return recording->detail;
}

void Trace::beginFrame()
{
    recording->beginFrame();
}

void Trace::endFrame()
{
    recording->endFrame();
}

void Trace::clear()
{
    recording->clear();
}

int Trace::numPasses() const
{
    return static_cast<int>(recording->passes.size());
}

QString Trace::passName(int pass) const
{
    if (pass < 0 || pass >= numPasses())
        return QString();
    return recording->passes[static_cast<std::size_t>(pass)].name;
}

void Trace::namePasses(Renderer& renderer)
{
    const Snapshot snapshot = Snapshot::of(renderer);
    const Paths paths(snapshot);
    for (int node = 0; node < snapshot.nodes.size(); ++node) {
        RenderPass* pass = renderer.renderPass(node);
        while (auto* traced = passCast<TracedPass>(pass)) {
            traced->setName(paths.node(node));
            pass = traced->pass();
        }
    }
}

qint64 Trace::numCalls(int pass, TraceEvent::Kind operation) const
{
    if (pass < 0 || pass >= numPasses() || !isKind(operation))
        return 0;
    return recording->passes[static_cast<std::size_t>(pass)].calls[operation];
}

QString Trace::kindName(TraceEvent::Kind kind)
{
    return isKind(kind) ? QLatin1String(kNames[kind]) : QString();
}

int Trace::numEvents() const
{
    return static_cast<int>(recording->events.size());
}

qint64 Trace::numDropped() const
{
    return recording->numDropped;
}

QVector<TraceEvent> Trace::events() const
{
    QVector<TraceEvent> ended;
    ended.reserve(numEvents());
    for (const TraceEvent& event : recording->events) {
        if (event.endNs != Recording::kOpen)
            ended.append(event);
    }
    return ended;
}

QVector<TraceSummary> Trace::passes() const
{
    struct Current
    {
        int frame = -1;
        std::size_t sample = 0;
        qint64 countedTo = 0; // calls within calls have ended before
    };
    std::vector<Current> byPass(recording->passes.size());
    std::vector<Sample> samples;
    for (const TraceEvent& event : recording->events) {
        if (event.kind == TraceEvent::Frame || event.kind >= TraceEvent::IsFinished
            || event.frame < 0 || event.frame >= recording->numWholeFrames)
            continue;
        Current& current = byPass[static_cast<std::size_t>(event.pass)];
        if (current.frame != event.frame) {
            current.frame = event.frame;
            current.sample = samples.size();
            samples.push_back({event.pass, 0});
        }
        if (event.endNs > current.countedTo) {
            samples[current.sample].time += event.endNs - event.beginNs;
            current.countedTo = event.endNs;
        }
    }
    sort(samples);

    QVector<TraceSummary> summaries;
    summaries.reserve(numPasses());
    const Sample* begin = samples.data();
    const Sample* const last = begin + samples.size();
    for (int pass = 0; pass < numPasses(); ++pass) {
        const Sample* end = begin;
        while (end != last && end->pass == pass)
            ++end;
        summaries.append(summaryOf(passName(pass), begin, end));
        begin = end;
    }
    return summaries;
}

TraceSummary Trace::frames() const
{
    std::vector<Sample> samples;
    for (const TraceEvent& event : recording->events) {
        if (event.kind == TraceEvent::Frame && event.frame < recording->numWholeFrames)
            samples.push_back({event.pass, event.endNs - event.beginNs});
    }
    sort(samples);
    return summaryOf(QString(), samples.data(), samples.data() + samples.size());
}

namespace {

/// Hands text on in pieces of some size.
class Pieces
{
public:
    /// False if it could not take the piece.
    using Taker = std::function<bool(const QByteArray& piece)>;

    explicit Pieces(Taker taker)
        : take(std::move(taker))
    {
        text.reserve(kSize + 4096);
    }

    template<typename Text>
    Pieces& operator<<(const Text& piece)
    {
        text += piece;
        if (text.size() >= kSize)
            flush();
        return *this;
    }
    Pieces& operator<<(qint64 number)
    {
        std::array<char, 24> digits{};
        const std::to_chars_result end = std::to_chars(digits.begin(), digits.end(), number);
        text.append(digits.data(), static_cast<int>(end.ptr - digits.data()));
        return *this;
    }
    /// Nanoseconds as microseconds with three decimals.
    Pieces& time(qint64 ns)
    {
        const qint64 decimals = ns % 1000;
        return *this << ns / 1000
                     << (decimals < 10        ? ".00"
                             : decimals < 100 ? ".0"
                                              : ".")
                     << decimals;
    }

    bool flush()
    {
        taken = taken && take(text);
        text.resize(0);
        return taken;
    }

private:
    static constexpr int kSize = 1 << 16;

    Taker take;
    QByteArray text;
    bool taken = true;
};

/// A name as it stands between the quotes of JSON.
QByteArray jsonText(const QString& name)
{
    // Through UTF-8, which replaces halves of surrogate pairs: some readers reject them.
    const QByteArray utf8 = name.toUtf8();
    const QByteArray json = compactJson(QString::fromUtf8(utf8.constData(), utf8.size())).toUtf8();
    return json.mid(1, json.size() - 2);
}

bool write(const Recording& recording, const Pieces::Taker& take)
{
    std::vector<QByteArray> names;
    names.reserve(recording.passes.size());
    for (const Recording::Pass& pass : recording.passes)
        names.push_back(pass.name.isEmpty() ? QByteArray() : jsonText(pass.name) + ' ');

    Pieces out(take);
    out << R"({"displayTimeUnit":"ns","otherData":{"droppedEvents":")" << recording.numDropped
        << R"("},"traceEvents":[
{"ph":"M","pid":1,"tid":1,"name":"process_name","args":{"name":"Orv"}},
{"ph":"M","pid":1,"tid":1,"name":"thread_name","args":{"name":"Renderer"}})";
    for (const TraceEvent& event : recording.events) {
        if (event.endNs == Recording::kOpen)
            continue;
        const char* kind = kNames[event.kind];
        out << R"(,
{"ph":"X","pid":1,"tid":1,"cat":")"
            << kind << R"(","name":")";
        if (event.pass >= 0)
            out << names[static_cast<std::size_t>(event.pass)];
        out << kind << R"(","ts":)";
        out.time(event.beginNs) << R"(,"dur":)";
        out.time(event.endNs - event.beginNs) << R"(,"args":{)";
        if (event.frame >= 0)
            out << R"("frame":)" << qint64(event.frame);
        if (event.kind == TraceEvent::EndFrame)
            out << (event.frame >= 0 ? "," : "") << R"("errorCode":)" << qint64(event.errorCode);
        out << "}}";
    }
    out << "\n]}\n";
    return out.flush();
}

} // namespace

QByteArray Trace::toTraceEvents() const
{
    QByteArray all;
    write(*recording, [&all](const QByteArray& piece) {
        // QByteArray does not check its size.
        if (piece.size() > std::numeric_limits<int>::max() / 2 - all.size())
            throw std::bad_alloc();
        all += piece;
        return true;
    });
    return all;
}

bool Trace::writeTraceEvents(QIODevice& device) const
{
    return write(*recording, [&device](const QByteArray& piece) {
        return device.write(piece) == piece.size();
    });
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
