// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_TRACEDPASS_H
#define KESTRIN_ORV_INSPECT_TRACEDPASS_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QString>

#include <memory>

namespace Kestrin {
namespace Orv {
namespace Inspect {

class Trace;

/// Records the calls of a pass. It stands between the renderer and the pass: it passes every
/// operation on, with its arguments and its result.
class ORV_INSPECT_EXPORT TracedPass : public RenderPass
{
public:
    /// \param trace records the calls, as long as it exists.
    /// \param name the name of the pass in the trace; see also Trace::namePasses().
    /// \param pass the pass to record. This object owns it from now on, even when the constructor
    /// throws. Null stands for a RenderPassHelper.
    TracedPass(Trace& trace, const QString& name, RenderPass* pass);
    /// Deletes the pass.
    ~TracedPass() override;
    TracedPass(const TracedPass&) = delete;
    TracedPass& operator=(const TracedPass&) = delete;

    /// The recorded pass. This object keeps ownership.
    RenderPass* pass() const;
    /// The pass that does the work. If \p pass is a TracedPass, this is the pass behind it, through
    /// any number of TracedPass objects; otherwise \p pass itself. Null for null.
    static const RenderPass* innermost(const RenderPass* pass);
    static RenderPass* innermost(RenderPass* pass); ///< the same
    /// The index of this pass in its trace.
    int index() const;
    /// Changes the name of this pass in the trace.
    void setName(const QString& name);

    void setup(RenderCallbacks* callbacks) override;
    void beginFrame(RenderCallbacks* callbacks) override;
    void start(RenderCallbacks* callbacks) override;
    void skip(RenderCallbacks* callbacks) override;
    void endFrame(RenderCallbacks* callbacks) override;
    bool isFinished() const override;
    void teardown(RenderCallbacks* callbacks) override;
    void teardownContextData(RenderCallbacks* callbacks) override;
    int numInputs() const override;
    int numOutputs() const override;
    QString inputName(int index) const override;
    QString outputName(int index) const override;
    void setInput(int index, const QVariant& value) override;
    QVariant defaultValue(int index) const override;
    void setDefaultValue(int index, const QVariant& value) override;
    QVariant output(int index) const override;
    void setNumOutputUsers(int index, int users) override;
    void resetNumOutputUsers() override;
    unsigned int errorCode() const override;
    void clearErrorCode() override;
    void setErrorCode(unsigned int code) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
