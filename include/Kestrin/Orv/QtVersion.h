// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_QTVERSION_H
#define KESTRIN_ORV_QTVERSION_H

/// Strings, variants and lists of Qt cross the library's interface, and their layout differs
/// between Qt's major versions. A host that is compiled with another one must not reach the linker:
/// the names of the functions are the same, the arguments are not.

#include <QtCore/qglobal.h>

#if QT_VERSION < 0x050C00 || QT_VERSION >= 0x060000
#    error "This libOrvCore is built with Qt 5: compile the host with Qt 5.12 or later, not Qt 6"
#endif

#endif
