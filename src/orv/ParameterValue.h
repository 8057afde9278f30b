// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_PARAMETERVALUE_H
#define KESTRIN_ORV_PROGRAM_PARAMETERVALUE_H

#include <QtCore/QVariant>

namespace Kestrin::Orv::Program {

/// Reads a value of the type of the current value. Lists and maps are JSON. If the parameter has no
/// value, a text that is not JSON is a string. Returns an invalid value if it cannot read the text.
QVariant parameterValue(const QString& text, const QVariant& current);

} // namespace Kestrin::Orv::Program

#endif
