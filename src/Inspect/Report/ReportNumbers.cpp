// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Report/ReportNumbers.h"

#include <algorithm>
#include <cmath>

namespace Kestrin {
namespace Orv {
namespace Inspect {

namespace {

struct Unit
{
    double size;
    const char* name;
};

/// The unit that suits a time.
const Unit& unitOf(double ns)
{
    static const Unit units[] = {{1e9, " s"}, {1e6, " ms"}, {1e3, " \xC2\xB5s"}, {1, " ns"}};
    for (const Unit& unit : units) {
        if (ns >= 0.9995 * unit.size)
            return unit;
    }
    return units[3];
}

} // namespace

QByteArray number(double value)
{
    return QByteArray::number(value, 'f', 3);
}

QByteArray count(qint64 value)
{
    return QByteArray::number(value);
}

QByteArray percent(double part)
{
    return number(100 * part) + "%";
}

QByteArray timeText(double ns)
{
    const Unit& unit = unitOf(ns);
    const double value = ns / unit.size;
    const int decimals = unit.size == 1 ? 0 : value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return QByteArray::number(value, 'f', decimals) + unit.name;
}

QByteArray tickText(double ns)
{
    const Unit& unit = unitOf(ns);
    return QByteArray::number(ns / unit.size, 'g', 5) + unit.name;
}

double roundedUp(double value)
{
    const double power = std::pow(10, std::floor(std::log10(std::max(value, 1e-9))));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= value * 0.999999)
            return factor * power;
    }
    return 10 * power;
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
