// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Document.h"
#include "Program.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace {

/// An edit that leaves no graph, and what is said of it.
struct BadGraph
{
    const char* name;
    const char* from;    // text of the document
    const char* to;      // what is written in its place
    const char* problem; // place and code
};

void PrintTo(const BadGraph& graph, std::ostream* out)
{
    *out << graph.name;
}

/// Expects one line for each problem, in the form in which compilers write them, and one in the
/// end.
void expectProblems(const ProgramRun& run, const QString& file, const QStringList& problems)
{
    QStringList lines = run.err.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), problems.size() + 2) << qPrintable(run.err);
    for (int i = 0; i < problems.size(); ++i) {
        const QString beginning = file + QLatin1Char(':') + problems.at(i) + QLatin1String(": ");
        EXPECT_TRUE(lines.at(i).startsWith(beginning))
            << qPrintable(lines.at(i)) << "\n  expected: " << qPrintable(beginning);
        EXPECT_GT(lines.at(i).size(), beginning.size()) << "the reason is missing";
    }
    const QString last = QStringLiteral("gallery: no graph in %1: %2 problem%3")
                             .arg(file, QString::number(problems.size()),
                                  QLatin1String(problems.size() == 1 ? "" : "s"));
    EXPECT_STREQ(qPrintable(lines.at(problems.size())), qPrintable(last));
    EXPECT_TRUE(lines.last().isEmpty());
}

} // namespace

class GalleryDocument : public GalleryTest
{
protected:
    /// Writes the document of the graph that the options make.
    QByteArray saved(const QString& name, const QStringList& options = QStringList())
    {
        const ProgramRun run =
            runGallery(words("--list --save-graph") + QStringList{folder(name)} + options);
        EXPECT_EQ(run.exitCode, 0) << qPrintable(run.err);
        EXPECT_STREQ(qPrintable(run.err), "");
        return bytesOf(folder(name));
    }

    void writeText(const QString& name, const QByteArray& text)
    {
        QFile file(folder(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
};

TEST_F(GalleryDocument, IsTheOneOnRecord)
{
    EXPECT_EQ(saved(QStringLiteral("graph.json")), bytesOf(QStringLiteral(GALLERY_GRAPH)))
        << "The built-in graph is not the one that the program orv is tested with. If it was to "
           "change:\n" GALLERY_PROGRAM " --list --save-graph " GALLERY_GRAPH;
}

TEST_F(GalleryDocument, ReadAndWrittenAgainIsTheSame)
{
    const QByteArray first = saved(QStringLiteral("first.json"));
    EXPECT_EQ(saved(QStringLiteral("second.json"),
                    words("--graph") + QStringList{folder(QStringLiteral("first.json"))}),
              first);
}

TEST_F(GalleryDocument, WithAMatrixOfItsOwnIsTheSameAgain)
{
    saved(QStringLiteral("plain.json"));
    Document document(folder(QStringLiteral("plain.json")));
    QJsonArray matrix;
    for (int i = 0; i < 16; ++i)
        matrix.append(i + 0.1);
    document.setInput(QStringLiteral("GBuffer"), QStringLiteral("View"), QStringLiteral("default"),
                      QJsonObject{{QStringLiteral("type"), QStringLiteral("QMatrix4x4")},
                                  {QStringLiteral("value"), matrix}});
    document.write(folder(QStringLiteral("edited.json")));
    EXPECT_EQ(saved(QStringLiteral("again.json"),
                    words("--graph") + QStringList{folder(QStringLiteral("edited.json"))}),
              bytesOf(folder(QStringLiteral("edited.json"))));
}

TEST_F(GalleryDocument, WithATargetAndDisabledPassesIsTheSameAgain)
{
    const QByteArray first = saved(QStringLiteral("first.json"),
                                   words("--disable Glow --disable DebugView --target LightMeter"));
    EXPECT_NE(first, saved(QStringLiteral("plain.json")));
    EXPECT_EQ(saved(QStringLiteral("second.json"),
                    words("--graph") + QStringList{folder(QStringLiteral("first.json"))}),
              first);
}

TEST_F(GalleryDocument, HoldsWhatWasDisabledAndNothingElse)
{
    saved(QStringLiteral("plain.json"));
    saved(QStringLiteral("disabled.json"), words("--disable Glow --disable ShadowMap"));
    EXPECT_EQ(Document(folder(QStringLiteral("plain.json"))).disabled(), QStringList());
    EXPECT_EQ(Document(folder(QStringLiteral("disabled.json"))).disabled(),
              (QStringList{QStringLiteral("ShadowMap"), QStringLiteral("Bloom/Glow")}));
}

TEST_F(GalleryDocument, IsTheSameWhetherPassesAreRecordedOrNot)
{
    const QByteArray plain = saved(QStringLiteral("plain.json"));
    EXPECT_EQ(saved(QStringLiteral("traced.json"),
                    words("--trace") + QStringList{folder(QStringLiteral("trace.json"))}),
              plain);
}

TEST_F(GalleryDocument, IsWrittenBeforeTheFramesAreRendered)
{
    // The folder of the pictures is made first, so that it can go there.
    const QString file = folder(QStringLiteral("out/graph.json"));
    render(QStringLiteral("out"), words("--save-graph") + QStringList{file});
    EXPECT_EQ(bytesOf(file), bytesOf(QStringLiteral(GALLERY_GRAPH)));
    EXPECT_TRUE(QFileInfo::exists(folder(QStringLiteral("out/frame-0000.png"))));
}

TEST_F(GalleryDocument, CanReplaceTheOneThatIsRead)
{
    const QString file = folder(QStringLiteral("graph.json"));
    saved(QStringLiteral("graph.json"));
    saved(QStringLiteral("graph.json"), words("--disable Glow --graph") + QStringList{file});
    EXPECT_EQ(Document(file).disabled(), QStringList{QStringLiteral("Bloom/Glow")});
}

TEST_F(GalleryDocument, OfATargetRunsItAndPrintsItsNumbers)
{
    const QString file = folder(QStringLiteral("graph.json"));
    saved(QStringLiteral("graph.json"), words("--target LightMeter"));
    EXPECT_EQ(render(QStringLiteral("out"), words("--graph") + QStringList{file})
                  .linesAfter(QStringLiteral("Luminance: "))
                  .size(),
              1);
}

TEST_F(GalleryDocument, WithSeveralProblemsReportsEachWithItsPlace)
{
    QByteArray text = bytesOf(QStringLiteral(GALLERY_GRAPH));
    text.replace("\"ToneMap.Color -> AntiAlias.Color\"", "\"ToneMap.Colour -> AntiAlias.Color\"");
    text.replace("\"Exposure -> ToneMap.Exposure\"", "\"Exposure -> TonMap.Exposure\"");
    writeText(QStringLiteral("bad.json"), text);
    const QString file = folder(QStringLiteral("bad.json"));
    const ProgramRun run = runGallery(words("--list --graph") + QStringList{file});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, QString());
    expectProblems(run, file,
                   {QStringLiteral("43:9: unknown-port"), QStringLiteral("57:9: unknown-node")});
}

class GalleryBadGraph : public GalleryDocument, public testing::WithParamInterface<BadGraph>
{
};

TEST_P(GalleryBadGraph, IsReportedWithItsPlaceAndRunsNothing)
{
    QByteArray text = bytesOf(QStringLiteral(GALLERY_GRAPH));
    const int at = text.indexOf(GetParam().from);
    ASSERT_GE(at, 0) << GetParam().from;
    text.replace(at, static_cast<int>(qstrlen(GetParam().from)), GetParam().to);
    writeText(QStringLiteral("bad.json"), text);
    const QString file = folder(QStringLiteral("bad.json"));
    const ProgramRun run =
        runGallery(QStringList{blocksModel()} + words("--graph") + QStringList{file}
                   + words("--out") + QStringList{folder(QStringLiteral("out"))});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, QString());
    expectProblems(run, file, {QString::fromLatin1(GetParam().problem)});
    EXPECT_FALSE(QFileInfo::exists(folder(QStringLiteral("out"))));
}

INSTANTIATE_TEST_SUITE_P(
    All, GalleryBadGraph,
    testing::Values(
        BadGraph{"UnknownType", R"("pass": "Glow")", R"("pass": "Haze")", "458:9: unknown-type"},
        BadGraph{"OtherPorts", R"("pass": "Glow")", R"("pass": "AntiAlias")", "458:9: wrong-ports"},
        BadGraph{"MisspeltPort", R"("Bloom.Bloom -> ToneMap.Bloom")",
                 R"("Bloom.Blom -> ToneMap.Bloom")", "42:9: unknown-port"},
        BadGraph{"InputFedTwice", R"("Lighting.Color -> LightMeter.Color")",
                 R"("Lighting.Color -> ToneMap.Bloom")", "52:9: already-fed"},
        BadGraph{"Cycle", R"("ToneMap.Color -> AntiAlias.Color")",
                 R"("Present.Picture -> AntiAlias.Color")", "45:9: cycle"},
        BadGraph{"BadColor", R"("#a0a0a4")", R"("grayish")", "218:34: wrong-value"},
        BadGraph{"WordInVector", "0.6,", R"("a bit",)", "642:22: wrong-value"},
        BadGraph{"ShortVector", "0.6,", "", "642:22: wrong-value"},
        BadGraph{"LongVector", "0.6,", "0.6, 0.6,", "642:22: wrong-value"},
        BadGraph{"BadMatrix", R"("identity")", R"("unity")", "97:34: wrong-value"},
        BadGraph{"NoJson", R"("nodes": [)", R"("nodes": )", "92:9: syntax"}),
    [](const auto& tested) { return std::string(tested.param.name); });
