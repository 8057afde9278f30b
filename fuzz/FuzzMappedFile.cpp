// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FuzzTarget.h"

#include <Kestrin/Orv/Memory.h>

#include <QtCore/QTemporaryFile>

#include <climits>
#include <memory>
#include <vector>

using Kestrin::Orv::MemoryMappedFile;

namespace {

unsigned char contentAt(unsigned long offset)
{
    return static_cast<unsigned char>(offset * 37 + offset / 256);
}

/// Files of all kinds of sizes: missing, empty, one byte, around a page, several pages.
QString fileOf(int kind, unsigned long& size)
{
    static const unsigned long sizes[] = {0, 0, 1, 4095, 4096, 4097, 20000};
    static std::unique_ptr<QTemporaryFile> files[7];
    size = sizes[kind];
    if (kind == 0)
        return QStringLiteral("/nowhere/to be found");
    if (!files[kind]) {
        files[kind] = std::make_unique<QTemporaryFile>();
        expect(files[kind]->open(), "no temporary file");
        QByteArray content;
        for (unsigned long i = 0; i < size; ++i)
            content += static_cast<char>(contentAt(i));
        files[kind]->write(content);
        files[kind]->flush();
    }
    return files[kind]->fileName();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    unsigned long length = 0;
    MemoryMappedFile file(fileOf(bytes.byte() % 7, length));
    expect(file.size() == length, "the size differs");
    const auto number = [&bytes, length]() -> unsigned long {
        switch (bytes.byte() % 6) {
        case 0:
            return length - 1 + bytes.byte() % 3;
        case 1:
            return ULONG_MAX - bytes.byte() * 64;
        case 2:
            return static_cast<unsigned long>(quint64{bytes.word()} << 32 | bytes.word());
        case 3:
            return 4094 + bytes.byte() % 5;
        default:
            return bytes.byte() * 80;
        }
    };
    std::vector<unsigned char*> held;
    for (int calls = 0; calls < 60 && !bytes.empty(); ++calls) {
        const unsigned long offset = number(), count = number();
        unsigned char* range = file.get(offset, count);
        const bool inside = offset < length && count <= length - offset;
        // A range of 0 bytes gets no mapping at the start of a page.
        expect((range != nullptr) == (inside && (count > 0 || offset % 4096 != 0)),
               "a range inside the file, and only that, is lent");
        if (range && count > 0) {
            expect(range[0] == contentAt(offset), "the first byte differs");
            expect(range[count - 1] == contentAt(offset + count - 1), "the last byte differs");
        }
        if (range)
            held.push_back(range);
        if (bytes.byte() % 2 && !held.empty()) {
            const std::size_t which = bytes.byte() % held.size();
            file.release(held[which]);
            held.erase(held.begin() + static_cast<std::ptrdiff_t>(which));
        }
        if (bytes.byte() % 16 == 0)
            file.release(reinterpret_cast<unsigned char*>(offset | 1)); // not a pointer from get()
    }
    return 0; // while mappings still exist
}
