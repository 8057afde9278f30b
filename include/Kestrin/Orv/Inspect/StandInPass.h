// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_STANDINPASS_H
#define KESTRIN_ORV_INSPECT_STANDINPASS_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/RenderPassHelper.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A pass that has the ports and defaults of another and puts numbers through them.
///
/// At every start each output becomes a number (a uint) that follows from the node's name, the
/// output's index and the inputs' current values, so that a change anywhere upstream shows in
/// everything downstream.
class ORV_INSPECT_EXPORT StandInPass : public RenderPassHelper
{
public:
    /// Stands in for the pass of a node.
    explicit StandInPass(const NodeRecord& node);
    ~StandInPass() override;

    void start(RenderCallbacks* callbacks) override;
    /// Does nothing, silently.
    void skip(RenderCallbacks* callbacks) override;

    /// The type of the pass that it stands for.
    QString type() const;
    /// Makes every start() take this long, in milliseconds.
    void setDuration(int milliseconds);
    /// Makes every start() end with this error code; 0 for success.
    void setFailure(unsigned int code);
    /// What start() puts out for an output.
    static uint number(const QString& name, int output, const QVector<QVariant>& inputs);

private:
    QString passName;
    QString passType;
    int duration = 0;
    unsigned int failure = 0;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
