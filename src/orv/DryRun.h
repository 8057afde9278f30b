// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_DRYRUN_H
#define KESTRIN_ORV_PROGRAM_DRYRUN_H

#include "Input.h"

#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QHash>
#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

/// How the stand-in of a pass behaves in each frame.
struct PassBehaviour
{
    int milliseconds = 0;
    unsigned int errorCode = 0; ///< 0 for success
};

/// A document and the behaviour of its passes.
struct DryRunSetup
{
    Document document;
    QHash<int, PassBehaviour> behaviours; ///< by node
};

/// Calls of the life cycle that a pass received one after the other.
struct PassCalls
{
    int node = -1;
    QStringList calls;
    unsigned int errorCode = 0; ///< the error code of the pass at the end of its frame
};

/// Runs the frames of a document with a stand-in for each pass, and records the calls that the
/// stand-ins receive.
class DryRun
{
public:
    /// Builds the renderer. Throws an InputError if the document has a graph that a renderer
    /// refuses.
    /// \param trace records the times of all calls, if it is not null; it must outlive this.
    DryRun(const DryRunSetup& setup, Inspect::Trace* trace);

    /// Each of these returns the calls that passes received, in order.
    QVector<PassCalls> setup();
    QVector<PassCalls> runFrame();
    QVector<PassCalls> teardown();

    /// Whether the last frame succeeded.
    bool succeeded() const { return lastFrameSucceeded; }
    /// The values of the renderer's outputs.
    QVariant output(int index) const { return renderer.output(index); }
    int numOutputs() const { return renderer.numOutputs(); }
    /// The graph that runs.
    const Inspect::Snapshot& snapshot() const { return graph; }
    /// The nodes of the passes that ended any frame with an error code.
    const QVector<int>& failedNodes() const { return failed; }

private:
    /// A renderer that knows whether it has been set up.
    class SetupAwareRenderer : public Renderer
    {
    public:
        void setup(RenderCallbacks* callbacks) override;
        bool isSetUp = false;
    };

    class RecordedPass;

    void record(int node, const QString& call);
    QVector<PassCalls> takeCalls();

    Inspect::Snapshot graph;
    Inspect::Trace* trace;
    QVector<PassCalls> recorded;
    QVector<int> failed;
    bool lastFrameSucceeded = true;
    SetupAwareRenderer renderer; // the last member: its passes use the others until their end
};

} // namespace Kestrin::Orv::Program

#endif
