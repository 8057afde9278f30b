// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Writes reports for a browser to look at: usual.html, text.html (without a picture) and
// hostile.html, whose names and picture try everything to be more than text.

#include "Inspect/support/SampleRun.h"

#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Report.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <cstdio>

using namespace Kestrin::Orv::Inspect;

namespace {

bool write(const QString& directory, const char* name, const ReportContent& content)
{
    QFile file(directory + QLatin1Char('/') + QLatin1String(name));
    const QByteArray page = toHtml(content);
    return file.open(QIODevice::WriteOnly) && file.write(page) == page.size();
}

QByteArray drawn(const QByteArray& text)
{
    QProcess dot;
    dot.start(QStringLiteral("dot"), {QStringLiteral("-Tsvg")});
    dot.write(text);
    dot.closeWriteChannel();
    dot.waitForFinished();
    return dot.readAllStandardOutput();
}

Snapshot hostileSnapshot()
{
    SnapshotBuilder builder;
    const char* const names[] = {
        "<script>fetch('http://example.org/1')</script>",
        "\"><img src=http://example.org/2 onerror=alert(1)>",
        "'><style>@import 'http://example.org/3';</style>",
        "</title></svg></style></table><h1>",
        "&lt;b&gt; \xE2\x80\xAE ]]> --> \x01",
        "averyverylongnamewithoutanyplacetobreakit_averyverylongnamewithoutanyplacetobreakit"};
    for (const char* name : names) {
        const int output = builder.output(name);
        const int pass = builder.pass(name, {name}, {name}, 0, name);
        builder.connect(pass, 0, 0, output);
    }
    return builder.snapshot;
}

const char kHostilePicture[] =
    "<?xml version=\"1.0\"?><svg xmlns=\"http://www.w3.org/2000/svg\" "
    "xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"400pt\" height=\"100pt\" "
    "viewBox=\"0 0 400 100\" onload=\"alert(1)\">"
    "<script>alert(2)</script><script xlink:href=\"http://example.org/4\"/>"
    "<style>@import 'http://example.org/5';</style>"
    "<image xlink:href=\"http://example.org/6\" width=\"9\" height=\"9\"/>"
    "<use xlink:href=\"http://example.org/7#x\"/>"
    "<foreignObject><iframe src=\"http://example.org/8\"/></foreignObject>"
    "<a xlink:href=\"javascript:alert(3)\"><text x=\"5\" y=\"50\" onclick=\"alert(4)\" "
    "style=\"background:url(http://example.org/9)\">harmless</text></a>"
    "<polygon points=\"0,0 9,0 9,9\" fill=\"url(http://example.org/10#p)\"/>"
    "<animate attributeName=\"href\" to=\"http://example.org/11\"/></svg>";

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: ReportPages DIRECTORY\n", stderr);
        return 2;
    }
    const QString directory = QString::fromLocal8Bit(argv[1]);

    const SampleRenderer sample;
    SampleRun run(sample.snapshot);
    run.run(240);
    const Snapshot snapshot = run.snapshot();
    ReportContent usual;
    usual.title = QStringLiteral("Forest scene, 240 frames");
    usual.snapshot = &snapshot;
    usual.trace = &run.trace;
    usual.failed = {sample.antialias};
    ReportContent text = usual;
    usual.picture = drawn(toGraphviz(snapshot, usual.failed));

    const Snapshot hostile = hostileSnapshot();
    SampleRun hostileRun(hostile);
    hostileRun.run(3);
    ReportContent attack;
    attack.title = hostile.node(1).name;
    attack.snapshot = &hostile;
    attack.trace = &hostileRun.trace;
    attack.picture = kHostilePicture;

    const bool written = write(directory, "usual.html", usual)
        && write(directory, "text.html", text) && write(directory, "hostile.html", attack);
    return written ? 0 : 1;
}
