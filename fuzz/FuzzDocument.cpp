// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include "support/WildRenderer.h"

using namespace Kestrin::Orv::Inspect;

namespace {

/// Checks the result for any text.
void check(const QByteArray& text, bool mustBeSound)
{
    const ReadResult read = readDocument(text);
    const int numLines = text.count('\n') + 1;
    QSet<QString> told;
    Place last;
    for (const Problem& problem : read.problems) {
        const Place& place = problem.place;
        expect(!problem.code.isEmpty() && !problem.text.isEmpty(), "a problem without words");
        expect(!problem.text.contains(QLatin1Char('\n')), "a text of several lines");
        expect(place.line >= 1 && place.line <= numLines && place.column >= 1, "a place outside");
        expect(place.line > last.line || (place.line == last.line && place.column >= last.column),
               "problems out of order");
        last = place;
        const QString whole = QString::number(place.line) + QLatin1Char(':')
            + QString::number(place.column) + problem.code + problem.text;
        expect(!told.contains(whole), "a message twice");
        told.insert(whole);
    }
    expect(read.problems.isEmpty() || read.snapshot.nodes.size() == 1,
           "a snapshot in spite of all");
    expectNothingWrong(documentFailure(text, mustBeSound));
}

/// A document of a renderer that is built from the first bytes, with one change.
QByteArray brokenDocument(Bytes& bytes)
{
    const std::uint32_t change = bytes.word();
    const int kind = bytes.byte() % 5;
    const std::uint8_t with = bytes.byte();
    WildRenderer wild({bytes.data(), bytes.data() + bytes.size()}, WildRenderer::Anything);
    QByteArray text = writeDocument(Snapshot::of(wild.renderer));
    check(text, true);

    const int at = static_cast<int>(change % static_cast<std::uint32_t>(text.size()));
    QList<QByteArray> lines = text.split('\n');
    const int line = static_cast<int>(change % static_cast<std::uint32_t>(lines.size()));
    switch (kind) {
    case 0:
        text[at] = static_cast<char>(with);
        return text;
    case 1:
        return text.remove(at, 1 + with % 8);
    case 2:
        lines.removeAt(line);
        break;
    case 3:
        lines.insert(line, lines.at(with % lines.size()));
        break;
    default:
        lines.swapItemsAt(line, with % lines.size());
    }
    return lines.join('\n');
}

} // namespace

// Any text, and documents of renderers with one error. Either the reader reports a problem, or the
// snapshot that it has read stays the same when it is written, read again and built.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    if (size > 0 && data[0] < 0x20) {
        bytes.byte();
        check(brokenDocument(bytes), false);
    } else {
        check(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), false);
    }
    return 0;
}
