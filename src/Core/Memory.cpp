// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Memory.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <limits>
#include <memory>

namespace Kestrin {
namespace Orv {

namespace {

/// Whether a range lies inside a block and begins before its end. Adds no numbers, so nothing
/// overflows.
bool isInside(quint64 blockSize, quint64 offset, quint64 size)
{
    return offset < blockSize && size <= blockSize - offset;
}

} // namespace

Memory::~Memory() = default;

struct MemoryMappedFile::MappedFileState
{
    explicit MappedFileState(const QString& path)
        : file(path)
        , fileSize(0)
    {
    }

    QFile file;
    quint64 fileSize; // the size when the file was opened
};

MemoryMappedFile::MemoryMappedFile(const QString& path)
    : state(nullptr)
{
    std::unique_ptr<MappedFileState> opened(new MappedFileState(path));
    // Only regular files: opening a FIFO would wait for its writer.
    if (QFileInfo(opened->file).isFile() && opened->file.open(QIODevice::ReadOnly))
        opened->fileSize = static_cast<quint64>(opened->file.size());
    state = opened.release();
}

MemoryMappedFile::~MemoryMappedFile()
{
    delete state;
}

unsigned long MemoryMappedFile::size() const
{
    // With 32 bits, a caller cannot name a range beyond this.
    const quint64 most = std::numeric_limits<unsigned long>::max();
    return static_cast<unsigned long>(std::min(state->fileSize, most));
}

unsigned char* MemoryMappedFile::get(unsigned long offset, unsigned long size)
{
    if (!isInside(state->fileSize, offset, size))
        return nullptr;
    return state->file.map(static_cast<qint64>(offset), static_cast<qint64>(size));
}

void MemoryMappedFile::release(unsigned char* range)
{
    state->file.unmap(range);
}

RawMemory::RawMemory(unsigned char* bytes, unsigned long size)
    : buffer(bytes)
    , bufferSize(size)
{
}

RawMemory::~RawMemory()
{
    delete[] buffer;
}

unsigned long RawMemory::size() const
{
    return static_cast<unsigned long>(bufferSize);
}

unsigned char* RawMemory::get(unsigned long offset, unsigned long size)
{
    return buffer && isInside(bufferSize, offset, size) ? buffer + offset : nullptr;
}

void RawMemory::release(unsigned char*) { }

} // namespace Orv
} // namespace Kestrin
