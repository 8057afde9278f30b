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

/// A pass that takes the place of another one: it has the same ports and defaults, and produces
/// numbers.
///
/// At every start, each output becomes a number (a uint). The number depends on the node's name,
/// the output's index and the current values of the inputs. So a change anywhere upstream changes
/// all outputs downstream.
class ORV_INSPECT_EXPORT StandInPass : public RenderPassHelper
{
public:
    /// Takes the place of the pass of a node.
    explicit StandInPass(const NodeRecord& node);
    ~StandInPass() override;

    void start(RenderCallbacks* callbacks) override;
    /// Does nothing and logs nothing.
    void skip(RenderCallbacks* callbacks) override;

    /// The type of the pass that it replaces.
    QString type() const;
    /// Makes every start() take this long, in milliseconds.
    void setDuration(int milliseconds);
    /// Makes every start() end with this error code; 0 for success.
    void setFailure(unsigned int code);
    /// The number that start() gives an output.
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
