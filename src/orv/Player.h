// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_PLAYER_H
#define KESTRIN_ORV_PROGRAM_PLAYER_H

#include "Command.h"
#include "Input.h"

#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QHash>
#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

/// The life-cycle calls that a pass has received one after the other.
struct PassCalls
{
    int node = -1;
    QStringList calls;
    unsigned int errorCode = 0; ///< what the pass ended its frame with
};

/// Runs a document with stand-ins in place of its passes and records the calls that they receive.
class Player
{
public:
    /// The options that say how passes behave.
    static QVector<Option> options();

    /// \param trace records the calls with their times, if not null; must outlive this.
    /// Throws a Misuse or a BadInput for what stands in the options, and a BadInput for a document
    /// of which no renderer can be built.
    Player(const Arguments& arguments, const Document& document, Inspect::Trace* trace);

    /// What follows answers the calls that passes have received, in their order.
    QVector<PassCalls> setup();
    QVector<PassCalls> frame();
    QVector<PassCalls> teardown();

    /// Whether the last frame went well.
    bool succeeded() const { return wentWell; }
    /// Values of the renderer's outputs.
    QVariant output(int index) const { return renderer.output(index); }
    int numOutputs() const { return renderer.numOutputs(); }
    /// The document as the options have changed it.
    const Inspect::Snapshot& snapshot() const { return played; }
    /// The nodes whose passes have ended with an error code in any frame.
    const QVector<int>& failed() const { return failedNodes; }

private:
    /// A renderer that knows whether it has been set up.
    class WatchedRenderer : public Renderer
    {
    public:
        void setup(RenderCallbacks* callbacks) override;
        bool isSetUp = false;
    };

    class PlayedPass;

    /// How a pass behaves.
    struct Behaviour
    {
        int milliseconds = 0;
        unsigned int errorCode = 0;
    };

    void readOptions(const Arguments& arguments, const Document& document);
    void record(int node, const QString& call);
    QVector<PassCalls> takeCalls();

    Inspect::Snapshot played;
    Inspect::Trace* trace;
    QHash<int, Behaviour> behaviours; ///< by node
    QVector<PassCalls> recorded;
    QVector<int> failedNodes;
    bool wentWell = true;
    WatchedRenderer renderer; // the last one: its passes use the others to their end
};

} // namespace Kestrin::Orv::Program

#endif
