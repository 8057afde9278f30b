// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// The passes that the steps of the tutorial share. A picture is one row of characters. A blank is
// transparent.

//! [first]
#pragma once

#include <Kestrin/Orv/OrvCore.h>

#include <cstdio>

using namespace Kestrin::Orv;

constexpr int width = 16;

/// Prints a picture between bars.
inline void show(const QVariant& picture)
{
    std::printf("|%s|\n", qPrintable(picture.toString()));
}

/// Draws a ball into an empty row.
class BallPass : public RenderPassHelper
{
public:
    BallPass()
    {
        addInput(QStringLiteral("position"), 8); // 8 is the default value
        addOutput(QStringLiteral("color"));
    }

    void start(RenderCallbacks*) override
    {
        QString row(width, QLatin1Char(' '));
        row[qBound(0, inputs[0].value.toInt(), width - 1)] = QLatin1Char('O');
        outputs[0].value = row;
    }
};
//! [first]

//! [trail]
/// Draws a trail behind moving things: an "O" becomes "o" after a frame, then ".", then nothing.
class TrailPass : public RenderPassHelper
{
public:
    TrailPass()
    {
        addInput(QStringLiteral("color"), QString());
        addOutput(QStringLiteral("color"));
    }

    void start(RenderCallbacks*) override
    {
        QString row = inputs[0].value.toString().leftJustified(width);
        for (int x = 0; x < width; ++x) {
            if (row[x] == QLatin1Char(' '))
                row[x] = faded(last[x]);
        }
        last = row;
        outputs[0].value = row;
    }

private:
    static QChar faded(QChar mark)
    {
        return QLatin1Char(mark == QLatin1Char('O') ? 'o' : mark == QLatin1Char('o') ? '.' : ' ');
    }

    QString last = QString(width, QLatin1Char(' '));
};
//! [trail]

//! [over]
/// Puts a foreground over a background.
class OverPass : public RenderPassHelper
{
public:
    OverPass()
    {
        addInput(QStringLiteral("foreground"), QString());
        addInput(QStringLiteral("background"), QString(width, QLatin1Char('_')));
        addOutput(QStringLiteral("color"));
    }

    void start(RenderCallbacks*) override
    {
        const QString foreground = inputs[0].value.toString().leftJustified(width);
        QString row = inputs[1].value.toString().leftJustified(width);
        for (int x = 0; x < width; ++x) {
            if (foreground[x] != QLatin1Char(' '))
                row[x] = foreground[x];
        }
        outputs[0].value = row;
    }
};
//! [over]

//! [announced]
/// Prints the calls that the pass gets in a frame.
template<typename Pass>
class Announced : public Pass
{
public:
    explicit Announced(const char* passName)
        : name(passName)
    {
    }

    void start(RenderCallbacks* callbacks) override
    {
        std::printf("  start %s\n", name);
        Pass::start(callbacks);
    }
    void skip(RenderCallbacks*) override { std::printf("  skip %s\n", name); }

private:
    const char* name;
};
//! [announced]
