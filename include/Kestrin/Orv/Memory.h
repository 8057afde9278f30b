// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_MEMORY_H
#define KESTRIN_ORV_MEMORY_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QString>

namespace Kestrin {
namespace Orv {

/// A read-only block of bytes that lends out ranges of itself.
class ORV_EXPORT Memory
{
public:
    /// Ranges that are still lent out become invalid.
    virtual ~Memory();

    /// The block's size in bytes.
    virtual unsigned long size() const = 0;
    /// Borrows \p size bytes, starting at \p offset. Give them back with release().
    /// \return a pointer to the first byte. Null when the range does not lie inside the block, or
    /// begins at the block's end.
    virtual unsigned char* get(unsigned long offset, unsigned long size) = 0;
    /// Gives back a pointer that get() returned. Ignores any other pointer.
    virtual void release(unsigned char* range) = 0;
};

/// A file whose ranges are mapped into memory one by one, on request.
///
/// A file that is missing, unreadable or not a regular file has size 0 and lends nothing; nothing
/// is logged. The size is read once, when the file is opened. **If the file shrinks afterwards,
/// reading a mapped byte beyond its new end raises SIGBUS**: map only files that nobody truncates
/// meanwhile. Only one thread at a time may use an object.
class ORV_EXPORT MemoryMappedFile : public Memory
{
public:
    /// Opens the file for reading. If that fails, size() is 0.
    explicit MemoryMappedFile(const QString& path);
    /// Closes the file and unmaps all ranges that were not released.
    ~MemoryMappedFile() override;
    MemoryMappedFile(const MemoryMappedFile&) = delete;
    MemoryMappedFile& operator=(const MemoryMappedFile&) = delete;

    unsigned long size() const override;
    /// Makes a new mapping on each call, even of a range that is already mapped. The mapping is
    /// valid until it is released or this object is destroyed. Also returns null when the system
    /// refuses the mapping.
    unsigned char* get(unsigned long offset, unsigned long size) override;
    void release(unsigned char* range) override;

private:
    struct ORV_NO_EXPORT MappedFileState;
    MappedFileState* state;
};

/// A buffer on the heap that lends its own bytes. Several threads may call get() on one object at
/// the same time.
class ORV_EXPORT RawMemory : public Memory
{
public:
    /// Takes ownership of \p bytes, which array new must have made. With null, the object lends
    /// nothing, whatever \p size is.
    RawMemory(unsigned char* bytes, unsigned long size);
    /// Frees the buffer with array delete.
    ~RawMemory() override;
    RawMemory(const RawMemory&) = delete;
    RawMemory& operator=(const RawMemory&) = delete;

    unsigned long size() const override;
    /// A pointer into the buffer, valid until this object is destroyed.
    unsigned char* get(unsigned long offset, unsigned long size) override;
    /// Does nothing.
    void release(unsigned char* range) override;

private:
    unsigned char* buffer;
    quint64 bufferSize;
};

} // namespace Orv
} // namespace Kestrin

#endif
