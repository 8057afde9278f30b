// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Trace.h>

#include "Recording.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QBuffer>
#include <QtCore/QIODevice>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <charconv>
#include <iterator>

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

TraceSummary summaryOf(const QString& name, std::vector<qint64> times)
{
    TraceSummary summary;
    summary.name = name;
    if (times.empty())
        return summary;
    std::sort(times.begin(), times.end());
    const auto percentile = [&times](std::size_t percent) {
        return times[(percent * times.size() + 99) / 100 - 1];
    };
    summary.count = static_cast<int>(times.size());
    for (const qint64 time : times)
        summary.total += time;
    summary.minimum = times.front();
    summary.median = percentile(50);
    summary.percentile90 = percentile(90);
    summary.percentile99 = percentile(99);
    summary.maximum = times.back();
    return summary;
}

} // namespace

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
        while (auto* traced = dynamic_cast<TracedPass*>(pass)) {
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
    struct Times
    {
        int frame = -1;            // of the last time
        qint64 countedTo = 0;      // what lies before has been counted
        std::vector<qint64> times; // by frame in which it was called
    };
    std::vector<Times> byPass(recording->passes.size());
    for (const TraceEvent& event : recording->events) {
        if (event.kind == TraceEvent::Frame || event.kind >= TraceEvent::IsFinished
            || event.frame < 0 || event.frame >= recording->numWholeFrames)
            continue;
        Times& pass = byPass[static_cast<std::size_t>(event.pass)];
        if (pass.frame != event.frame) {
            pass.frame = event.frame;
            pass.times.push_back(0);
        }
        const qint64 begin = std::max(event.beginNs, pass.countedTo);
        if (event.endNs > begin) {
            pass.times.back() += event.endNs - begin;
            pass.countedTo = event.endNs;
        }
    }

    QVector<TraceSummary> summaries;
    summaries.reserve(numPasses());
    for (int pass = 0; pass < numPasses(); ++pass) {
        summaries.append(
            summaryOf(passName(pass), std::move(byPass[static_cast<std::size_t>(pass)].times)));
    }
    return summaries;
}

TraceSummary Trace::frames() const
{
    std::vector<qint64> times;
    for (const TraceEvent& event : recording->events) {
        if (event.kind == TraceEvent::Frame && event.frame < recording->numWholeFrames)
            times.push_back(event.endNs - event.beginNs);
    }
    return summaryOf(QString(), std::move(times));
}

namespace {

/// Writes to a device in pieces of some size.
class Pieces
{
public:
    explicit Pieces(QIODevice& target)
        : device(target)
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
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        text.append(digits.data(), static_cast<int>(end - digits.data()));
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
        written = written && device.write(text) == text.size();
        text.resize(0);
        return written;
    }

private:
    static constexpr int kSize = 1 << 16;

    QIODevice& device;
    QByteArray text;
    bool written = true;
};

/// A name as it stands within the quotes of JSON.
QByteArray jsonText(const QString& name)
{
    // By way of UTF-8, which leaves no half of a character: not all readers bear one.
    const QByteArray utf8 = name.toUtf8();
    const QJsonArray array{QString::fromUtf8(utf8.constData(), utf8.size())};
    const QByteArray json = QJsonDocument(array).toJson(QJsonDocument::Compact);
    return json.mid(2, json.size() - 4); // without [" and "]
}

} // namespace

QByteArray Trace::toTraceEvents() const
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writeTraceEvents(buffer);
    return buffer.data();
}

bool Trace::writeTraceEvents(QIODevice& device) const
{
    std::vector<QByteArray> names;
    names.reserve(recording->passes.size());
    for (const Recording::Pass& pass : recording->passes)
        names.push_back(pass.name.isEmpty() ? QByteArray() : jsonText(pass.name) + ' ');

    Pieces out(device);
    out << "{\"displayTimeUnit\":\"ns\",\"otherData\":{\"droppedEvents\":\""
        << recording->numDropped << "\"},\"traceEvents\":[\n"
        << R"({"ph":"M","pid":1,"tid":1,"name":"process_name","args":{"name":"Orv"}},)"
        << "\n"
        << R"({"ph":"M","pid":1,"tid":1,"name":"thread_name","args":{"name":"Renderer"}})";
    for (const TraceEvent& event : recording->events) {
        if (event.endNs == Recording::kOpen)
            continue;
        const char* kind = kNames[event.kind];
        out << ",\n{\"ph\":\"X\",\"pid\":1,\"tid\":1,\"cat\":\"" << kind << "\",\"name\":\"";
        if (event.pass >= 0)
            out << names[static_cast<std::size_t>(event.pass)];
        out << kind << "\",\"ts\":";
        out.time(event.beginNs) << ",\"dur\":";
        out.time(event.endNs - event.beginNs) << ",\"args\":{";
        const char* separator = "";
        if (event.frame >= 0) {
            out << "\"frame\":" << static_cast<qint64>(event.frame);
            separator = ",";
        }
        if (event.kind == TraceEvent::EndFrame)
            out << separator << "\"errorCode\":" << static_cast<qint64>(event.errorCode);
        out << "}}";
    }
    out << "\n]}\n";
    return out.flush();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
