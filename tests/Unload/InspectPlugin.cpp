// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Strings.h"

// No string of the plugin's own is a literal: that would lie in unloaded memory, too. This holds
// for the samples as well.
#undef QStringLiteral
#define QStringLiteral(text) QString::fromUtf16(u"" text)

#include "Inspect/support/Host.h"
#include "Inspect/support/SampleRun.h"
#include "support/WildRenderer.h"

#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/Diff.h>
#include <Kestrin/Orv/Inspect/Document.h>
#include <Kestrin/Orv/Inspect/Explain.h>
#include <Kestrin/Orv/Inspect/Lint.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Report.h>
#include <Kestrin/Orv/Inspect/Schedule.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Inspect/TracedPass.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <string>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

class Taker
{
public:
    explicit Taker(Strings& into)
        : strings(into)
    {
    }

    std::set<std::string> lintSeen, diffSeen, problemsSeen;

    void value(const char* what, const QJsonValue& json)
    {
        if (json.isString())
            strings.take(what, json.toString());
        for (const QJsonValue element : json.toArray())
            value(what, element);
        const QJsonObject object = json.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            strings.take(what, member.key());
            value(what, member.value());
        }
    }

    void value(const char* what, const QVariant& variant)
    {
        if (variant.userType() == QMetaType::QByteArray)
            strings.take(what, variant.toByteArray());
        else if (variant.userType() == qMetaTypeId<ForeignValue>()) {
            strings.take(what, variant.value<ForeignValue>().type);
            value(what, variant.value<ForeignValue>().value);
        } else if (variant.userType() == QMetaType::QString)
            strings.take(what, variant.toString());
        for (const QString& text : variant.toStringList())
            strings.take(what, text);
        for (const QVariant& element : variant.toList())
            value(what, element);
        const QVariantMap map = variant.toMap();
        for (auto member = map.begin(); member != map.end(); ++member) {
            strings.take(what, member.key());
            value(what, member.value());
        }
    }

    void problems(const QVector<Problem>& list)
    {
        for (const Problem& problem : list) {
            problemsSeen.insert(problem.code.toStdString());
            strings.take("Problem::code", problem.code);
            strings.take("Problem::text", problem.text);
        }
    }

    void ports(const QVector<PortRecord>& list)
    {
        for (const PortRecord& port : list) {
            strings.take("PortRecord::name", port.name);
            value("PortRecord::defaultValue", port.defaultValue);
        }
    }

    void records(const Snapshot& snapshot)
    {
        for (int ref = -1; ref <= snapshot.nodes.size(); ++ref) {
            const NodeRecord& node = snapshot.node(ref);
            strings.take("NodeRecord::name", node.name);
            strings.take("NodeRecord::type", node.type);
            for (const QString& group : node.groups)
                strings.take("NodeRecord::groups", group);
            ports(node.inputs);
            ports(node.outputs);
        }
        strings.take("PortRecord::name", snapshot.input(-1, -1).name);
        for (const QVariant& parameter : snapshot.parameters)
            value("Snapshot::parameters", parameter);
    }

    void paths(const Paths& names, const Snapshot& snapshot)
    {
        for (int ref = -1; ref <= snapshot.nodes.size(); ++ref) {
            const NodeRecord& node = snapshot.node(ref);
            strings.take("Paths::node", names.node(ref));
            strings.take("Paths::escaped", Paths::escaped(node.name));
            for (int i = -1; i <= std::max(node.inputs.size(), node.outputs.size()); ++i) {
                strings.take("Paths::input", names.input(ref, i));
                strings.take("Paths::output", names.output(ref, i));
                strings.take("Paths::port", names.port({ref, i, i % 2 == 0}));
            }
        }
    }

    void explanations(const Snapshot& snapshot)
    {
        const Explainer explainer(snapshot);
        paths(explainer.paths(), snapshot);
        const auto take = [&](const char* what, const auto& explanation) {
            strings.take(what, explainer.toText(explanation));
            value(what, QJsonValue(explainer.toJson(explanation)));
        };
        const int numNodes = std::min(snapshot.nodes.size(), 12);
        for (int ref = -1; ref <= numNodes; ++ref) {
            take("NodeExplanation", explainer.node(ref));
            const int numInputs = snapshot.node(ref).inputs.size();
            for (int i = -1; i <= numInputs; ++i) {
                const InputExplanation explanation = explainer.input(ref, i);
                value("InputExplanation::value", explanation.value);
                take("InputExplanation", explanation);
            }
            for (int to = -1; to <= numNodes; ++to) {
                for (const bool output : {false, true}) {
                    take("EdgeExplanation", explainer.edge({ref, 0, true}, {to, 0, output}));
                    take("EdgeExplanation", explainer.edge({ref, 0, output}, {to, 0, false}));
                }
            }
        }
    }

    void findings(const Snapshot& snapshot)
    {
        for (const Finding& finding : lint(snapshot)) {
            lintSeen.insert(finding.code.toStdString());
            strings.take("Finding::code", finding.code);
            strings.take("Finding::text", finding.text);
        }
    }

    void differences(const Snapshot& before, const Snapshot& after)
    {
        const QVector<Change> changes = diff(before, after);
        for (const Change& change : changes) {
            diffSeen.insert(change.code.toStdString());
            strings.take("Change::code", change.code);
            strings.take("Change::path", change.path);
            strings.take("Change::before", change.before);
            strings.take("Change::after", change.after);
        }
        strings.take("toText(changes)", toText(changes));
        value("toJson(changes)", QJsonValue(toJson(changes)));
    }

    /// All that is told of one snapshot.
    void snapshot(const Snapshot& shown)
    {
        records(shown);
        findings(shown);
        explanations(shown);
        const Paths names(shown);
        paths(names, shown);
        QVector<int> failed;
        for (int ref = 0; ref < shown.nodes.size(); ref += 2)
            failed.append(ref);
        strings.take("toGraphviz", toGraphviz(shown, failed));
        ReportContent content;
        content.snapshot = &shown;
        content.failed = failed;
        strings.take("toHtml", toHtml(content));

        QVector<Problem> losses;
        const QByteArray document = writeDocument(shown, &losses);
        strings.take("writeDocument", document);
        problems(losses);
        const Snapshot read = this->document(document);
        differences(shown, read);
    }

    Snapshot document(const QByteArray& json)
    {
        const ReadResult result = readDocument(json);
        problems(result.problems);
        records(result.snapshot);
        if (!result.problems.isEmpty())
            return result.snapshot;
        for (const bool known : {true, false}) {
            Renderer renderer;
            const PassFactory factory = known ? PassFactory::standIns() : PassFactory();
            problems(buildRenderer(result.snapshot, renderer, factory, result.places));
            records(Snapshot::of(renderer));
            // Into one that is not empty any more.
            problems(buildRenderer(result.snapshot, renderer, factory));
            for (int node = 0; node < renderer.getGraph()->numNodesGlobal(); ++node) {
                if (auto* pass = dynamic_cast<StandInPass*>(renderer.renderPass(node)))
                    strings.take("StandInPass::type", pass->type());
            }
        }
        return result.snapshot;
    }

    void trace()
    {
        const SampleRenderer sample;
        SampleRun run(sample.snapshot);
        run.trace.setDetail(Trace::EveryCall);
        run.run(5);
        for (int kind = -1; kind < 40; ++kind)
            strings.take("Trace::kindName", Trace::kindName(static_cast<TraceEvent::Kind>(kind)));
        for (int pass = -1; pass <= run.trace.numPasses(); ++pass)
            strings.take("Trace::passName", run.trace.passName(pass));
        for (const TraceSummary& summary : run.trace.passes())
            strings.take("TraceSummary::name", summary.name);
        strings.take("TraceSummary::name", run.trace.frames().name);
        strings.take("Trace::toTraceEvents", run.trace.toTraceEvents());
        const Snapshot shown = run.snapshot();
        ReportContent content;
        strings.take("toHtml", toHtml(content));
        content.snapshot = &shown;
        content.trace = &run.trace;
        content.picture = "<svg xmlns=\"http://www.w3.org/2000/svg\"><text>a</text></svg>";
        content.failed = {1, 2};
        strings.take("toHtml", toHtml(content));
        TracedPass traced(run.trace, QString(), nullptr);
        strings.take("TracedPass::inputName", traced.inputName(0));
        strings.take("TracedPass::outputName", traced.outputName(0));
        traced.skip(nullptr); // a message
    }

    void codes()
    {
        for (const LintCode& code : lintCodes()) {
            strings.take("LintCode::code", code.code);
            strings.take("LintCode::meaning", code.meaning);
        }
        for (const QString& code : diffCodes())
            strings.take("diffCodes", code);
    }

    /// A text that never comes up is not looked at.
    bool sawAllCodes() const
    {
        std::set<std::string> missing;
        for (const LintCode& code : lintCodes()) {
            if (lintSeen.count(code.code.toStdString()) == 0)
                missing.insert("finding " + code.code.toStdString());
        }
        for (const QString& code : diffCodes()) {
            if (diffSeen.count(code.toStdString()) == 0)
                missing.insert("change " + code.toStdString());
        }
        for (const std::string& code : missing)
            std::printf("no %s came up\n", code.c_str());
        const std::size_t numProblems = 39;
        if (problemsSeen.size() < numProblems)
            std::printf("only %zu of %zu codes of problems came up\n", problemsSeen.size(),
                        numProblems);
        return missing.empty() && problemsSeen.size() >= numProblems;
    }

private:
    Strings& strings;
};

/// What random graphs seldom are.
void takeRarities(Taker& taker)
{
    ::Host host;
    const Snapshot empty = host.snapshot();
    const int g = host.group("G", "in", "out");
    const int p = host.pass("P", "in", "p", g);
    const int a = host.pass("A", "x y", "out");
    const int b = host.pass("B", "in", "out");
    host.output("Picture");
    host.up("Picture", a, "out");
    host.down("in", p, "in");
    const int inner = host.up("out", p, "p");
    host.link(g, "out", b, "in");
    host.link(g, "out", a, "x");
    const int o = host.pass("O", "", "out");
    host.link(o, "out", host.pass("Q", "in", "", g), "in"); // no siblings
    host.link(b, "out", g, "in");                           // a cycle through the group
    taker.snapshot(host.snapshot());                        // and users that are not counted

    Snapshot moved = host.snapshot();
    moved.nodes[g].children.removeOne(p);
    moved.nodes[0].children.append(p);
    moved.nodes[p].parent = 0;
    moved.nodes[a].inputs.move(0, 1);
    taker.differences(host.snapshot(), moved);
    taker.differences(empty, moved);

    // Fewer readers than edges, then edges whose ports have gone.
    host.graph.removeEdge(inner);
    host.link(p, "p", host.pass("R", "in", "", g), "in");
    host.link(p, "p", host.pass("S", "in", "", g), "in");
    host.up("out", p, "p");
    taker.snapshot(host.snapshot());
    host.graph.removeInput(a, 0);
    host.graph.removeOutput(g, 0);
    taker.snapshot(host.snapshot());
    const int x = host.pass("X", "", "x");
    const int y = host.group("Y", "p q", "");
    host.link(x, "x", y, "q");
    host.graph.removeInput(y, 0);
    taker.snapshot(host.snapshot());
    host.graph.removeNode(p);
    host.graph.purge();
    taker.snapshot(host.snapshot());
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

} // namespace

/// `directory` is that of the sources, with documents of all kinds.
extern "C" Q_DECL_EXPORT bool takeStrings(Strings& strings, const char* directory)
{
    Taker taker(strings);
    taker.codes();
    taker.trace();
    takeRarities(taker);

    std::mt19937 random(1);
    const SampleRenderer sample;
    taker.snapshot(sample.snapshot);
    taker.snapshot(Snapshot());
    Snapshot before = sample.snapshot;
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::vector<std::uint8_t> bytes(seed);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        WildRenderer wild(bytes, seed % 2 == 0 ? WildRenderer::Anything : WildRenderer::Removing);
        const Snapshot snapshot = Snapshot::of(wild.renderer);
        taker.snapshot(snapshot);
        taker.differences(before, snapshot);
        before = snapshot;
    }

    QStringList files;
    for (const char* folder :
         {"/tests/Inspect/Document/documents", "/tests/orv/documents", "/fuzz/corpus"}) {
        QDirIterator all(QString::fromUtf8(directory) + QString::fromUtf8(folder), QDir::Files,
                         QDirIterator::Subdirectories);
        while (all.hasNext())
            files.append(all.next());
    }
    files.sort();
    for (const QString& file : qAsConst(files)) {
        const QByteArray document = contentOf(file);
        const Snapshot read = taker.document(document);
        taker.snapshot(read);
        for (int i = 0; i < 20 && !document.isEmpty() && document.size() < 10000; ++i) {
            QByteArray broken = document;
            const int at = static_cast<int>(random() % static_cast<unsigned>(broken.size()));
            if (i % 2 == 0)
                broken[at] = static_cast<char>(random());
            else
                broken.remove(at, 1 + static_cast<int>(random() % 8));
            taker.document(broken);
        }
    }
    return taker.sawAllCodes();
}

/// What the host must notice.
extern "C" Q_DECL_EXPORT bool takeLiteral(Strings& strings, const char*)
{
    static const char text[] = "a literal";
    strings.take("the plugin's own", QByteArray::fromRawData(text, sizeof text - 1));
    return true;
}
