// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/WildRenderer.h"

#include <cstdio>
#include <random>

// Writes documents of renderers of all kinds, each followed by a zero byte.
int main()
{
    using namespace Kestrin::Orv::Inspect;
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        std::vector<std::uint8_t> bytes(seed * 20);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        WildRenderer wild(bytes, WildRenderer::Anything);
        const QByteArray text = writeDocument(Snapshot::of(wild.renderer));
        std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()) + 1, stdout);
    }
}
