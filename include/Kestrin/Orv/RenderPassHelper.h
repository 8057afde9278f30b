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

/// A value and the name that it goes by.
template<typename T>
struct NamedValue
{
    QString name; ///< not required to be unique
    T value;      ///< a QVariant where passes use it
};

/// The stock implementation of RenderPass, which host passes derive from.
///
/// It keeps ports, values, user counts and the error code; every life-cycle call does nothing, but
/// for skip(). A derived class declares its ports with addInput() and addOutput() before the pass
/// is registered (later ones stay unknown to the renderer), overrides what it does itself, and
/// reads and writes the protected members: `inputs` holds the current input values, `outputs` is
/// where results go, `outputUsers` holds how many scheduled consumers each output has.
///
/// An index that names no port is harmless: queries answer an empty name or an invalid value, and
/// setters ignore it. All operations take constant time, the look-ups and resetNumOutputUsers()
/// time linear in the ports.
class ORV_EXPORT RenderPassHelper : public RenderPass
{
public:
    /// A pass without ports and with error code 0.
    RenderPassHelper();
    ~RenderPassHelper() override;

    void setup(RenderCallbacks* callbacks) override;
    void beginFrame(RenderCallbacks* callbacks) override;
    void start(RenderCallbacks* callbacks) override;
    /// Logs, at debug level and on every call, that a derived class should have handled this.
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
    QElapsedTimer timer;                   ///< what frameTimer() answers

    // Room that derived classes may use as they like; zero at first, never touched again here.
    int reservedInt;           ///< room for the derived class
    qint64 reservedWide;       ///< room for the derived class
    qint64 reservedSlots[100]; ///< room for the derived class

    quint32 error; ///< 0 for none
};

} // namespace Orv
} // namespace Kestrin

/// A record of movable fields is movable itself: QVector grows without copying one by one.
template<typename T>
class QTypeInfo<Kestrin::Orv::NamedValue<T>>
    : public QTypeInfoMerger<Kestrin::Orv::NamedValue<T>, QString, T>
{
};

#endif
