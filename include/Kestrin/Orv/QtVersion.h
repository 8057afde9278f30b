// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_QTVERSION_H
#define KESTRIN_ORV_QTVERSION_H

/// Refuses a host that is compiled with another major version of Qt. Strings, variants and lists of
/// Qt are part of the library's interface, and their layout differs between major versions. The
/// linker would not notice: the functions have the same names with both versions, but different
/// arguments.

#include <QtCore/qglobal.h>

#if QT_VERSION < 0x050C00 || QT_VERSION >= 0x060000
#    error "This libOrvCore is built with Qt 5: compile the host with Qt 5.12 or later, not Qt 6"
#endif

#endif
