// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_RENDERPASSHELPER_H
#define KESTRIN_ORV_RENDERPASSHELPER_H

#include <Kestrin/Orv/Export.h>
#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {

/// A value with a name.
template<typename T>
struct NamedValue
{
    QString name; ///< not required to be unique
    T value;      ///< a QVariant in passes
};

/// The default implementation of RenderPass. Host passes derive from it.
///
/// It keeps ports, values, user counts and the error code. All life-cycle calls except skip() do
/// nothing. A derived class overrides the calls that it needs. It declares its ports with
/// addInput() and addOutput() before the pass is registered; the renderer does not see ports that
/// are added later. It uses the protected members: `inputs` holds the current input values,
/// `outputs` takes the results, `outputUsers` holds the number of scheduled consumers of each
/// output.
///
/// An index without a port is harmless: queries return an empty name or an invalid value, and
/// setters ignore it. Look-ups by name and resetNumOutputUsers() take time linear in the number of
/// ports, all other operations take constant time.
class ORV_EXPORT RenderPassHelper : public RenderPass
{
public:
    /// A pass without ports and with error code 0.
    RenderPassHelper();
    ~RenderPassHelper() override;

    void setup(RenderCallbacks* callbacks) override;
    void beginFrame(RenderCallbacks* callbacks) override;
    void start(RenderCallbacks* callbacks) override;
    /// Logs at debug level, on every call, that a derived class should override it.
    void skip(RenderCallbacks* callbacks) override;
    void endFrame(RenderCallbacks* callbacks) override;
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

    /// Appends an input and returns its index. Its current value is invalid until setInput(); the
    /// default does not become the current value. Names may repeat.
    virtual int addInput(const QString& name, const QVariant& defaultValue);
    /// Appends an output with an invalid value and returns its index. Names may repeat.
    virtual int addOutput(const QString& name);
    /// The first input of this name, compared exactly; -1 if none.
    virtual int findInput(const QString& name) const;
    /// The first output of this name, compared exactly; -1 if none.
    virtual int findOutput(const QString& name) const;

    /// A timer for derived classes, invalid until they start it.
    const QElapsedTimer& frameTimer() const;
    /// The same timer, for starting it.
    QElapsedTimer& frameTimer();

protected:
    QVector<NamedValue<QVariant>> inputs;  ///< name and current value of each input
    QVector<QVariant> defaultValues;       ///< of each input
    QVector<NamedValue<QVariant>> outputs; ///< name and current value of each output
    QVector<int> outputUsers;              ///< number of scheduled consumers of each output
    QElapsedTimer timer;                   ///< what frameTimer() returns

    // Derived classes may use these fields freely. They are zero at first; this class never uses
    // them.
    int reservedInt;           ///< free for the derived class
    qint64 reservedWide;       ///< free for the derived class
    qint64 reservedSlots[100]; ///< free for the derived class

    quint32 error; ///< 0 for none
};

} // namespace Orv
} // namespace Kestrin

/// A record of movable fields is movable itself, so QVector grows without copying single records.
template<typename T>
class QTypeInfo<Kestrin::Orv::NamedValue<T>>
    : public QTypeInfoMerger<Kestrin::Orv::NamedValue<T>, QString, T>
{
};

#endif
