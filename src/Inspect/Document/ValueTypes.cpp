// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/ValueTypes.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

void ValueTypes::add(const QString& type, const ToJson& toJson, const FromJson& fromJson)
{
    converters.insert(type, qMakePair(toJson, fromJson));
}

ValueTypes::ToJson ValueTypes::toJson(const QString& type) const
{
    return converters.value(type).first;
}

ValueTypes::FromJson ValueTypes::fromJson(const QString& type) const
{
    return converters.value(type).second;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
