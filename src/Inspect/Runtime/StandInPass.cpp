// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/StandInPass.h>

#include "Document/DocumentValues.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QThread>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

/// FNV-1a: the same number on every platform.
class Fnv
{
public:
    void add(const QByteArray& bytes)
    {
        for (const char c : bytes)
            add(c);
        add('\0'); // the end of one text
    }
    uint value() const { return hash; }

private:
    void add(char c) { hash = (hash ^ static_cast<uchar>(c)) * 16777619U; }

    uint hash = 2166136261U;
};

/// A text that differs for different values and types.
QByteArray textOf(const QVariant& value)
{
    if (value.userType() == QMetaType::UInt) // the outputs of stand-ins
        return "uint " + QByteArray::number(value.toUInt());
    QJsonObject object;
    if (!writeValue(value, ValueTypes(), object))
        return value.typeName();
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

Fnv hashOf(const QString& name, const QVector<QVariant>& inputs)
{
    Fnv hash;
    hash.add(name.toUtf8());
    for (const QVariant& input : inputs)
        hash.add(textOf(input));
    return hash;
}

uint numberOf(Fnv hash, int output)
{
    hash.add(QByteArray::number(output));
    return hash.value();
}

} // namespace

StandInPass::StandInPass(const NodeRecord& node)
    : passName(node.name)
    , passType(node.type)
{
    for (const PortRecord& input : node.inputs)
        RenderPassHelper::addInput(input.name, input.defaultValue);
    for (const PortRecord& output : node.outputs)
        RenderPassHelper::addOutput(output.name);
}

StandInPass::~StandInPass() = default;

void StandInPass::start(RenderCallbacks*)
{
    QVector<QVariant> values;
    values.reserve(inputs.size());
    for (const NamedValue<QVariant>& input : qAsConst(inputs))
        values.append(input.value);
    const Fnv hash = hashOf(passName, values);
    for (int i = 0; i < outputs.size(); ++i)
        outputs[i].value = numberOf(hash, i);
    if (duration > 0)
        QThread::msleep(static_cast<unsigned long>(duration));
    setErrorCode(failure);
}

void StandInPass::skip(RenderCallbacks*) { }

QString StandInPass::type() const
{
    return passType;
}

void StandInPass::setDuration(int milliseconds)
{
    duration = milliseconds;
}

void StandInPass::setFailure(unsigned int code)
{
    failure = code;
}

uint StandInPass::number(const QString& name, int output, const QVector<QVariant>& inputs)
{
    return numberOf(hashOf(name, inputs), output);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
