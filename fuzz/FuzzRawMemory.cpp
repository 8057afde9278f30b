// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include <Kestrin/Orv/Memory.h>

#include <climits>

using Kestrin::Orv::RawMemory;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    const unsigned long length = bytes.byte() % 64;
    unsigned char* buffer = length == 0 ? nullptr : new unsigned char[length]();
    RawMemory memory(buffer, length);
    expect(memory.size() == length, "the size differs");
    const auto number = [&bytes, length]() -> unsigned long {
        switch (bytes.byte() % 5) {
        case 0:
            return length + bytes.byte() % 3;
        case 1:
            return ULONG_MAX - bytes.byte() % 64;
        case 2:
            return static_cast<unsigned long>(quint64{bytes.word()} << 32 | bytes.word());
        default:
            return bytes.byte() % 64;
        }
    };
    for (int calls = 0; calls < 200 && !bytes.empty(); ++calls) {
        const unsigned long offset = number(), count = number();
        unsigned char* range = memory.get(offset, count);
        const bool inside = offset < length && count <= length - offset;
        expect(range == (inside ? buffer + offset : nullptr), "the range differs");
        if (inside && count > 0) {
            range[0] = 1;
            range[count - 1] = 2;
        }
        memory.release(bytes.byte() % 2 ? range : reinterpret_cast<unsigned char*>(offset));
    }
    return 0;
}
