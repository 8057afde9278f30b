// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Core.h>

#include <cstdio>

int main()
{
    const QString library = Kestrin::Orv::CoreVersions::getVersion();
    const bool agree = library == QLatin1String(PACKAGE_VERSION);
    std::printf("%s\n", agree ? "agree" : "differ");
    if (!agree)
        std::fprintf(stderr, "CMake package %s, library %s\n", PACKAGE_VERSION,
                     qPrintable(library));
}
