// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/Document.h>

#include <gtest/gtest.h>

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>
#include <Kestrin/Orv/Renderer.h>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

const char kSmall[] = R"({
    "edges": [
        "Angle -> Bloom.Angle",
        "Bloom.Angle -> Bloom/Blur.Angle",
        "Bloom/Blur.Color -> Bloom.Color",
        "Bloom.Color -> Tone.Color",
        "Tone.Color -> Picture"
    ],
    "format": "orv-graph",
    "nodes": [
        {
            "groups": [
                "Surface"
            ],
            "inputs": [
                {
                    "group": "Surface",
                    "name": "Angle"
                }
            ],
            "outputs": [
                "Color"
            ],
            "path": "Bloom"
        },
        {
            "enabled": false,
            "inputs": [
                {
                    "default": {
                        "type": "int",
                        "value": 3
                    },
                    "name": "Angle"
                }
            ],
            "outputs": [
                "Color"
            ],
            "pass": "Gauss",
            "path": "Bloom/Blur"
        },
        {
            "inputs": [
                "Color"
            ],
            "outputs": [
                "Color"
            ],
            "pass": "",
            "path": "Tone"
        }
    ],
    "outputs": [
        "Picture"
    ],
    "parameters": [
        {
            "name": "Angle",
            "type": "float",
            "value": 0.6
        }
    ],
    "target": "Tone",
    "version": 1
}
)";

std::string listed(const QVector<Problem>& problems)
{
    QString all;
    for (const Problem& problem : problems)
        all += QString::number(problem.place.line) + QLatin1Char(':')
            + QString::number(problem.place.column) + QLatin1Char(' ') + problem.code
            + QLatin1String(": ") + problem.text + QLatin1Char('\n');
    return all.toStdString();
}

} // namespace

TEST(Document, IsTheSameAfterReadingAndWriting)
{
    const ReadResult read = readDocument(kSmall);
    EXPECT_EQ(listed(read.problems), "");
    QVector<Problem> losses;
    EXPECT_EQ(writeDocument(read.snapshot, &losses).toStdString(), kSmall);
    EXPECT_EQ(listed(losses), "");
}

TEST(Document, IsTheSameAfterARendererWasBuiltFromIt)
{
    const ReadResult read = readDocument(kSmall);
    Renderer renderer;
    EXPECT_EQ(listed(buildRenderer(read.snapshot, renderer, PassFactory::standIns())), "");
    EXPECT_EQ(writeDocument(Snapshot::of(renderer)).toStdString(), kSmall);
}
