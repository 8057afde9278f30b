// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_PARAMETERVALUE_H
#define KESTRIN_ORV_PROGRAM_PARAMETERVALUE_H

#include <QtCore/QVariant>

namespace Kestrin::Orv::Program {

/// Reads a value of the type that the parameter has; lists and maps are written as JSON. Where the
/// parameter has no value, what is no JSON is a string. Invalid if it cannot be read.
QVariant parameterValue(const QString& text, const QVariant& current);

} // namespace Kestrin::Orv::Program

#endif
