// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/RenderPassHelper.h>

#include "AppendToBoth.h"
#include "Diagnostics.h"
#include "FindByName.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {

namespace {

bool hasIndex(int index, int size)
{
    return index >= 0 && index < size;
}

} // namespace

RenderPassHelper::RenderPassHelper()
    : reservedInt(0)
    , reservedWide(0)
    , reservedSlots{}
    , error(0)
{
    timer.invalidate();
}

RenderPassHelper::~RenderPassHelper() = default;

void RenderPassHelper::setup(RenderCallbacks*) { }

void RenderPassHelper::beginFrame(RenderCallbacks*) { }

void RenderPassHelper::start(RenderCallbacks*) { }

void RenderPassHelper::skip(RenderCallbacks*)
{
    Diagnostics::logger().debug()
        << "RenderPassHelper::skip() called, inherit from RenderPassProxy";
}

void RenderPassHelper::endFrame(RenderCallbacks*) { }

void RenderPassHelper::teardown(RenderCallbacks*) { }

void RenderPassHelper::teardownContextData(RenderCallbacks*) { }

int RenderPassHelper::numInputs() const
{
    return inputs.size();
}

int RenderPassHelper::numOutputs() const
{
    return outputs.size();
}

QString RenderPassHelper::inputName(int index) const
{
    return hasIndex(index, inputs.size()) ? inputs.at(index).name : QString();
}

QString RenderPassHelper::outputName(int index) const
{
    return hasIndex(index, outputs.size()) ? outputs.at(index).name : QString();
}

void RenderPassHelper::setInput(int index, const QVariant& value)
{
    if (hasIndex(index, inputs.size()))
        inputs[index].value = value;
}

QVariant RenderPassHelper::defaultValue(int index) const
{
    return defaultValues.value(index);
}

void RenderPassHelper::setDefaultValue(int index, const QVariant& value)
{
    if (hasIndex(index, defaultValues.size()))
        defaultValues[index] = value;
}

QVariant RenderPassHelper::output(int index) const
{
    return hasIndex(index, outputs.size()) ? outputs.at(index).value : QVariant();
}

void RenderPassHelper::setNumOutputUsers(int index, int users)
{
    if (hasIndex(index, outputUsers.size()))
        outputUsers[index] = users;
}

void RenderPassHelper::resetNumOutputUsers()
{
    std::fill_n(outputUsers.data(), outputUsers.size(), 0);
}

unsigned int RenderPassHelper::errorCode() const
{
    return error;
}

void RenderPassHelper::clearErrorCode()
{
    error = 0;
}

void RenderPassHelper::setErrorCode(unsigned int code)
{
    error = code;
}

int RenderPassHelper::addInput(const QString& name, const QVariant& defaultValue)
{
    appendToBoth(inputs, NamedValue<QVariant>{name, QVariant()}, defaultValues, defaultValue);
    return inputs.size() - 1;
}

int RenderPassHelper::addOutput(const QString& name)
{
    appendToBoth(outputs, NamedValue<QVariant>{name, QVariant()}, outputUsers, 0);
    return outputs.size() - 1;
}

int RenderPassHelper::findInput(const QString& name) const
{
    return findByName(inputs, name);
}

int RenderPassHelper::findOutput(const QString& name) const
{
    return findByName(outputs, name);
}

const QElapsedTimer& RenderPassHelper::frameTimer() const
{
    return timer;
}

QElapsedTimer& RenderPassHelper::frameTimer()
{
    return timer;
}

} // namespace Orv
} // namespace Kestrin
