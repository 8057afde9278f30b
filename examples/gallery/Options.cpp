// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Options.h"

#include <Kestrin/Orv/Core.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

namespace Gallery {

namespace {

const char defaultModel[] =
    "/usr/share/assimp/models/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb";
const int maxSide = 8192;

/// The numbers in a text that matches a pattern completely; none if it does not match. The pattern
/// keeps each number short enough for an int.
QVector<int> numbersOf(const QString& text, const QString& pattern)
{
    const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
    const QRegularExpressionMatch match = expression.match(text);
    QVector<int> numbers;
    for (int i = 1; i <= match.lastCapturedIndex(); ++i)
        numbers.append(match.captured(i).toInt());
    return numbers;
}

bool parseSize(const QString& text, QSize& size)
{
    const QVector<int> sides = numbersOf(text, QStringLiteral("([0-9]{1,4})x([0-9]{1,4})"));
    if (sides.size() != 2)
        return false;
    size = QSize(sides.at(0), sides.at(1));
    return size.width() >= 1 && size.height() >= 1 && size.width() <= maxSide
        && size.height() <= maxSide;
}

bool parseRange(const QString& text, int& first, int& last)
{
    const QVector<int> bounds = numbersOf(text, QStringLiteral("([0-9]{1,6})(?:-([0-9]{1,6}))?"));
    if (bounds.isEmpty())
        return false;
    first = bounds.first();
    last = bounds.last();
    return first <= last;
}

} // namespace

bool Options::parse(const QStringList& arguments, QString& error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Renders a model with a graph of render passes, as pictures frame-NNNN.png, "
                       "and beside each\n"
                       "what the passes hand each other, debug-NNNN.png.\n\n"
                       "The camera goes once around the model in 120 frames (--turn), so 0-119 is "
                       "a seamless turn;\n"
                       "a frame is the same whichever range it is part of. The jobs of an array "
                       "can split a turn:\n"
                       "  gallery --frames 0-59 --out turn & gallery --frames 60-119 --out turn"));
    const QCommandLineOption help(QStringLiteral("help"), QStringLiteral("Print this text."));
    const QCommandLineOption version(QStringLiteral("version"),
                                     QStringLiteral("Print the library's version."));
    const QCommandLineOption sizeOption(QStringLiteral("size"),
                                        QStringLiteral("Size of the pictures (960x720)."),
                                        QStringLiteral("WxH"));
    const QCommandLineOption framesOption(
        QStringLiteral("frames"), QStringLiteral("The frames to render, one or a range (0)."),
        QStringLiteral("A-B"));
    const QCommandLineOption turnOption(QStringLiteral("turn"),
                                        QStringLiteral("Number of frames in a full turn (120)."),
                                        QStringLiteral("N"));
    const QCommandLineOption outOption(
        QStringLiteral("out"), QStringLiteral("Folder of the pictures, made if need be (.)."),
        QStringLiteral("DIR"), QStringLiteral("."));
    const QCommandLineOption disableOption(
        QStringLiteral("disable"),
        QStringLiteral("Bypass a pass; what it feeds does without. May be repeated."),
        QStringLiteral("PASS"));
    const QCommandLineOption targetOption(
        QStringLiteral("target"),
        QStringLiteral("Also run a pass that no picture needs, and print the numbers it found."),
        QStringLiteral("PASS"));
    const QCommandLineOption resourcesOption(
        QStringLiteral("resources"),
        QStringLiteral("Folder of the shaders (Resources beside the program)."),
        QStringLiteral("DIR"));
    const QCommandLineOption graphOption(
        QStringLiteral("graph"),
        QStringLiteral("Render with the graph of this document, one that --save-graph has written "
                       "and that may have been edited since."),
        QStringLiteral("FILE"));
    const QCommandLineOption saveOption(
        QStringLiteral("save-graph"),
        QStringLiteral("Write the graph as it is about to run, as a document."),
        QStringLiteral("FILE"));
    const QCommandLineOption traceOption(
        QStringLiteral("trace"),
        QStringLiteral("Record when the passes run, for Perfetto or chrome://tracing."),
        QStringLiteral("FILE"));
    const QCommandLineOption reportOption(
        QStringLiteral("report"),
        QStringLiteral("Write a report on the graph and its frames, as HTML."),
        QStringLiteral("FILE"));
    const QCommandLineOption graphvizOption(
        QStringLiteral("dump-graph"),
        QStringLiteral("Write the graph for Graphviz instead of rendering."),
        QStringLiteral("FILE"));
    const QCommandLineOption listOption(
        QStringLiteral("list"),
        QStringLiteral("Print the passes in their order of execution instead of rendering."));
    const QCommandLineOption staggeredOption(
        QStringLiteral("staggered"),
        QStringLiteral("Bring the passes up one per frame before the first picture."));
    const QCommandLineOption timesOption(QStringLiteral("times"),
                                         QStringLiteral("Print a histogram of the frame times."));
    const QCommandLineOption verboseOption(
        QStringLiteral("verbose"), QStringLiteral("Say for each frame which passes started."));
    const QCommandLineOption noPoolOption(
        QStringLiteral("no-pool"),
        QStringLiteral("Give every output of a pass a texture of its own."));
    parser.addOptions({help, version, sizeOption, framesOption, turnOption, outOption,
                       disableOption, targetOption, staggeredOption, listOption, timesOption,
                       verboseOption, graphOption, saveOption, traceOption, reportOption,
                       graphvizOption, noPoolOption, resourcesOption});
    parser.addPositionalArgument(
        QStringLiteral("model"),
        QStringLiteral("Model file, of any format that assimp reads (an engine of two cylinders)."),
        QStringLiteral("[model]"));

    if (!parser.parse(arguments)) {
        error = parser.errorText().simplified();
        return false;
    }
    if (parser.isSet(help))
        message = parser.helpText();
    else if (parser.isSet(version))
        message = QStringLiteral("gallery %1\n").arg(Kestrin::Orv::CoreVersions::getVersion());
    if (!message.isEmpty())
        return true;

    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1) {
        error = QStringLiteral("more than one model: %1").arg(positional.join(QLatin1Char(' ')));
        return false;
    }
    model = positional.isEmpty() ? QString::fromLatin1(defaultModel) : positional.first();

    if (parser.isSet(sizeOption) && !parseSize(parser.value(sizeOption), size)) {
        error = QStringLiteral("not a size of 1x1 to %1x%1: %2")
                    .arg(maxSide)
                    .arg(parser.value(sizeOption));
        return false;
    }
    if (parser.isSet(framesOption)
        && !parseRange(parser.value(framesOption), firstFrame, lastFrame)) {
        error = QStringLiteral("not a range of frames: %1").arg(parser.value(framesOption));
        return false;
    }
    if (parser.isSet(turnOption)) {
        turn = numbersOf(parser.value(turnOption), QStringLiteral("([0-9]{1,6})")).value(0);
        if (turn < 1) {
            error = QStringLiteral("not a number of frames: %1").arg(parser.value(turnOption));
            return false;
        }
    }
    outDirectory = parser.value(outOption);
    disabled = parser.values(disableOption);
    target = parser.value(targetOption);
    resources = parser.value(resourcesOption);
    graphFile = parser.value(graphOption);
    savedGraphFile = parser.value(saveOption);
    traceFile = parser.value(traceOption);
    reportFile = parser.value(reportOption);
    graphvizFile = parser.value(graphvizOption);
    staggered = parser.isSet(staggeredOption);
    list = parser.isSet(listOption);
    times = parser.isSet(timesOption);
    verbose = parser.isSet(verboseOption);
    reuseTextures = !parser.isSet(noPoolOption);
    return true;
}

} // namespace Gallery
