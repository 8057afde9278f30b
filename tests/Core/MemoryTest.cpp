// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Memory.h>

#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <type_traits>
#include <vector>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using Kestrin::Orv::Memory;
using Kestrin::Orv::MemoryMappedFile;
using Kestrin::Orv::RawMemory;

namespace {

/// Array new of bytes 0, 1, 2, ...
unsigned char* makeBuffer(unsigned long size)
{
    auto* buffer = new unsigned char[size];
    for (unsigned long i = 0; i < size; ++i)
        buffer[i] = static_cast<unsigned char>(i);
    return buffer;
}

class MappedFile : public testing::Test
{
protected:
    QString path(const char* name) const { return directory.filePath(QString::fromLatin1(name)); }

    /// A file of bytes 0, 1, 2, ... modulo 251.
    QString writeFile(const char* name, int size) const
    {
        QByteArray bytes(size, '\0');
        for (int i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i % 251);
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), size);
        return file.fileName();
    }

    static void expectNothing(MemoryMappedFile& file)
    {
        EXPECT_EQ(file.size(), 0u);
        for (const unsigned long offset : {0ul, 1ul, ULONG_MAX}) {
            for (const unsigned long size : {0ul, 1ul, ULONG_MAX})
                EXPECT_EQ(file.get(offset, size), nullptr);
        }
    }

    static int numMappings(const QString& file)
    {
        QFile maps(QStringLiteral("/proc/self/maps"));
        EXPECT_TRUE(maps.open(QIODevice::ReadOnly));
        return maps.readAll().count(QFile::encodeName(file));
    }

    const QTemporaryDir directory;
    const MessageRecorder recorder;
};

template<typename Method>
std::uintptr_t virtualSlot(Method method)
{
    std::uintptr_t word = 0; // 1 + offset in the table of virtual functions
    std::memcpy(&word, &method, sizeof word);
    return (word - 1) / sizeof(void*);
}

} // namespace

TEST(Memory, ItsVirtualOperationsFollowTheTwoDestructors)
{
    EXPECT_EQ(virtualSlot(&Memory::size), 2u);
    EXPECT_EQ(virtualSlot(&Memory::get), 3u);
    EXPECT_EQ(virtualSlot(&Memory::release), 4u);
    EXPECT_TRUE(std::is_abstract<Memory>::value);
    EXPECT_TRUE(std::has_virtual_destructor<Memory>::value);
}

TEST(Memory, OwnersAreNeitherCopiedNorAssigned)
{
    EXPECT_FALSE(std::is_copy_constructible<MemoryMappedFile>::value);
    EXPECT_FALSE(std::is_copy_assignable<MemoryMappedFile>::value);
    EXPECT_FALSE(std::is_copy_constructible<RawMemory>::value);
    EXPECT_FALSE(std::is_copy_assignable<RawMemory>::value);
}

TEST(Memory, IsDestroyedThroughItsBase)
{
    const std::unique_ptr<Memory> memory(new RawMemory(makeBuffer(4), 4));
    EXPECT_EQ(memory->size(), 4u);
    EXPECT_EQ(memory->get(3, 1)[0], 3);
}

// RawMemory

TEST(RawMemory, ServesEveryRangeInside)
{
    unsigned char* const buffer = makeBuffer(16);
    RawMemory memory(buffer, 16);
    EXPECT_EQ(memory.size(), 16u);
    EXPECT_EQ(memory.get(0, 16), buffer);
    EXPECT_EQ(memory.get(8, 8), buffer + 8);
    EXPECT_EQ(memory.get(15, 1), buffer + 15);
}

TEST(RawMemory, ServesAnEmptyRangeInside)
{
    unsigned char* const buffer = makeBuffer(16);
    RawMemory memory(buffer, 16);
    EXPECT_EQ(memory.get(15, 0), buffer + 15);
    EXPECT_EQ(memory.get(0, 0), buffer);
}

TEST(RawMemory, RefusesARangeThatEndsOutside)
{
    RawMemory memory(makeBuffer(16), 16);
    EXPECT_EQ(memory.get(8, 9), nullptr);
    EXPECT_EQ(memory.get(0, 17), nullptr);
    EXPECT_EQ(memory.get(15, 2), nullptr);
}

TEST(RawMemory, RefusesARangeThatBeginsAtTheEndOrBeyond)
{
    RawMemory memory(makeBuffer(16), 16);
    EXPECT_EQ(memory.get(16, 0), nullptr);
    EXPECT_EQ(memory.get(16, 1), nullptr);
    EXPECT_EQ(memory.get(17, 0), nullptr);
}

TEST(RawMemory, HugeNumbersDoNotWrapAround)
{
    unsigned char* const buffer = makeBuffer(16);
    RawMemory memory(buffer, 16);
    EXPECT_EQ(memory.get(8, ULONG_MAX), nullptr);
    EXPECT_EQ(memory.get(8, ULONG_MAX - 7), nullptr);
    EXPECT_EQ(memory.get(ULONG_MAX, 0), nullptr);
    EXPECT_EQ(memory.get(ULONG_MAX, 1), nullptr);
    EXPECT_EQ(memory.get(ULONG_MAX - 7, 16), nullptr);
#if ULONG_MAX > UINT_MAX
    EXPECT_EQ(memory.get((1ul << 32), 1), nullptr);
    EXPECT_EQ(memory.get(0, (1ul << 32) + 1), nullptr);
#endif
    EXPECT_EQ(memory.get(0, 16), buffer);
}

TEST(RawMemory, ReleaseDoesNothing)
{
    unsigned char* const buffer = makeBuffer(4);
    RawMemory memory(buffer, 4);
    unsigned char* const range = memory.get(1, 2);
    memory.release(range);
    memory.release(range);
    memory.release(nullptr);
    EXPECT_EQ(range[0], 1);
    EXPECT_EQ(memory.get(1, 2), range);
}

TEST(RawMemory, OfNoBufferServesNothing)
{
    RawMemory memory(nullptr, 0);
    EXPECT_EQ(memory.size(), 0u);
    EXPECT_EQ(memory.get(0, 0), nullptr);
    EXPECT_EQ(memory.get(0, 1), nullptr);
    memory.release(nullptr);
}

TEST(RawMemory, OwnsABufferOfNoBytes)
{
    RawMemory memory(new unsigned char[0], 0); // freed, or the leak checker objects
    EXPECT_EQ(memory.get(0, 0), nullptr);
}

// MemoryMappedFile

TEST_F(MappedFile, MapsWhatTheFileHolds)
{
    MemoryMappedFile file(writeFile("file", 10000));
    EXPECT_EQ(file.size(), 10000u);
    unsigned char* const whole = file.get(0, 10000);
    ASSERT_NE(whole, nullptr);
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(whole[i], i % 251) << i;
    file.release(whole);
}

TEST_F(MappedFile, MapsRangesAtAnyOffset)
{
    MemoryMappedFile file(writeFile("file", 10000));
    for (const unsigned long offset : {0ul, 1ul, 4095ul, 4096ul, 4097ul, 8191ul, 9999ul}) {
        unsigned char* const byte = file.get(offset, 1);
        ASSERT_NE(byte, nullptr) << offset;
        EXPECT_EQ(*byte, offset % 251) << offset;
        file.release(byte);
    }
    unsigned char* const tail = file.get(4097, 10000 - 4097);
    ASSERT_NE(tail, nullptr);
    EXPECT_EQ(tail[10000 - 4097 - 1], 9999 % 251);
}

TEST_F(MappedFile, RefusesRangesOutside)
{
    MemoryMappedFile file(writeFile("file", 10000));
    EXPECT_EQ(file.get(0, 10001), nullptr);
    EXPECT_EQ(file.get(9999, 2), nullptr);
    EXPECT_EQ(file.get(10000, 0), nullptr);
    EXPECT_EQ(file.get(10000, 1), nullptr);
    EXPECT_EQ(file.get(10001, 0), nullptr);
    EXPECT_EQ(file.get(1, ULONG_MAX), nullptr);
    EXPECT_EQ(file.get(ULONG_MAX, 0), nullptr);
    EXPECT_EQ(file.get(ULONG_MAX, 2), nullptr);
    EXPECT_EQ(file.get(5000, ULONG_MAX - 4999), nullptr);
}

TEST_F(MappedFile, OfAnEmptyRangeAtTheStartMapsNothing)
{
    MemoryMappedFile file(writeFile("file", 100));
    EXPECT_EQ(file.get(0, 0), nullptr);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, EachGetMakesAMappingOfItsOwn)
{
    const QString name = writeFile("file", 5000);
    MemoryMappedFile file(name);
    unsigned char* const first = file.get(10, 100);
    unsigned char* const second = file.get(10, 100);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    file.release(first);
    EXPECT_EQ(second[0], 10);
    EXPECT_EQ(numMappings(name), 1);
    file.release(second);
    EXPECT_EQ(numMappings(name), 0);
}

TEST_F(MappedFile, MapsOnlyWhatIsAskedFor)
{
    const QString name = writeFile("file", 100000);
    MemoryMappedFile file(name);
    EXPECT_EQ(numMappings(name), 0);
    file.get(0, 1);
    EXPECT_EQ(numMappings(name), 1);
}

TEST_F(MappedFile, DestructionUnmapsWhatWasNotReleased)
{
    const QString name = writeFile("file", 5000);
    {
        MemoryMappedFile file(name);
        file.get(0, 5000);
        file.get(1000, 1);
        EXPECT_GT(numMappings(name), 0);
    }
    EXPECT_EQ(numMappings(name), 0);
}

TEST_F(MappedFile, ReleaseOfAnythingElseIsIgnored)
{
    const QString name = writeFile("file", 5000);
    MemoryMappedFile file(name);
    unsigned char* const range = file.get(0, 5000);
    unsigned char elsewhere = 0;
    file.release(nullptr);
    file.release(&elsewhere);
    file.release(range + 1);
    EXPECT_EQ(numMappings(name), 1);
    EXPECT_EQ(range[4999], 4999 % 251);
    file.release(range);
    file.release(range);
    EXPECT_EQ(numMappings(name), 0);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, HoldsTenThousandMappingsReleasedInAnyOrder)
{
    const int count = 10000;
    const int fileSize = 20000;
    const QString name = writeFile("file", fileSize);
    MemoryMappedFile file(name);
    struct Range
    {
        unsigned long offset;
        unsigned char* bytes;
    };
    std::vector<Range> ranges;
    std::set<unsigned char*> distinct;
    for (unsigned long i = 0; i < count; ++i) {
        unsigned char* const bytes = file.get(i, fileSize - i);
        ASSERT_NE(bytes, nullptr) << i;
        ranges.push_back({i, bytes});
        distinct.insert(bytes);
    }
    EXPECT_EQ(distinct.size(), static_cast<size_t>(count));
    std::shuffle(ranges.begin(), ranges.end(), std::mt19937(1));
    while (!ranges.empty()) {
        ASSERT_EQ(ranges.back().bytes[0], ranges.back().offset % 251);
        file.release(ranges.back().bytes);
        ranges.pop_back();
    }
    EXPECT_EQ(numMappings(name), 0);
}

TEST_F(MappedFile, OfAMissingFileServesNothing)
{
    MemoryMappedFile file(path("missing"));
    expectNothing(file);
    file.release(nullptr);
    EXPECT_FALSE(QFile::exists(path("missing")));
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, OfNoPathServesNothing)
{
    MemoryMappedFile unnamed{QString()};
    expectNothing(unnamed);
    MemoryMappedFile empty{QStringLiteral("")};
    expectNothing(empty);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, OfADirectoryServesNothing)
{
    MemoryMappedFile file(directory.path());
    expectNothing(file);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, OfAnEmptyFileServesNothing)
{
    MemoryMappedFile file(writeFile("empty", 0));
    expectNothing(file);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, OfAFileCreatedLaterServesNothing)
{
    MemoryMappedFile file(path("late"));
    writeFile("late", 100);
    expectNothing(file);
}

TEST_F(MappedFile, OfAFifoDoesNotBlockAndServesNothing)
{
    ASSERT_EQ(mkfifo(path("fifo").toLocal8Bit().constData(), 0600), 0);
    MemoryMappedFile file(path("fifo"));
    expectNothing(file);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST_F(MappedFile, OfADeviceServesNothing)
{
    MemoryMappedFile file(QStringLiteral("/dev/null"));
    expectNothing(file);
}

TEST_F(MappedFile, FollowsASymbolicLink)
{
    const QString target = writeFile("target", 300);
    ASSERT_TRUE(QFile::link(target, path("link")));
    MemoryMappedFile file(path("link"));
    ASSERT_EQ(file.size(), 300u);
    EXPECT_EQ(file.get(299, 1)[0], 299 % 251);
}

// The superuser may read everything, so a child process gives up its rights first.
TEST_F(MappedFile, OfAFileWithoutPermissionServesNothing)
{
    const QString name = writeFile("secret", 100);
    ASSERT_EQ(chmod(QFile::encodeName(name).constData(), 0), 0);
    ASSERT_EQ(chmod(QFile::encodeName(directory.path()).constData(), 0755), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        if (geteuid() == 0 && setuid(65534) != 0)
            _exit(2);
        MemoryMappedFile file(name);
        _exit(QFile::exists(name) && file.size() == 0 && file.get(0, 1) == nullptr ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == 2)
        GTEST_SKIP() << "cannot give up the superuser's rights";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(MappedFile, KeepsTheSizeThatTheFileHadWhenItWasOpened)
{
    const QString name = writeFile("file", 10000);
    MemoryMappedFile file(name);
    ASSERT_TRUE(QFile::resize(name, 5000));
    EXPECT_EQ(file.size(), 10000u);
    unsigned char* const head = file.get(0, 5000);
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(head[4999], 4999 % 251);
    file.release(head);
    file.release(file.get(8000, 2000)); // never read: it lies behind the end
    ASSERT_TRUE(QFile::resize(name, 20000));
    EXPECT_EQ(file.size(), 10000u);
    EXPECT_EQ(file.get(10000, 1), nullptr);
}

TEST_F(MappedFile, StaysReadableWhenTheFileIsDeleted)
{
    const QString name = writeFile("file", 1000);
    MemoryMappedFile file(name);
    ASSERT_TRUE(QFile::remove(name));
    unsigned char* const range = file.get(500, 500);
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range[499], 999 % 251);
}

TEST_F(MappedFile, IsOpenFromConstructionToDestruction)
{
    const QString name = writeFile("file", 100);
    const auto isOpen = [&name] {
        for (int descriptor = 0; descriptor < 256; ++descriptor) {
            if (QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor)) == name)
                return true;
        }
        return false;
    };
    {
        MemoryMappedFile file(name);
        EXPECT_TRUE(isOpen());
    }
    EXPECT_FALSE(isOpen());
}

TEST_F(MappedFile, RangesAreMappedSharedAndForReadingAlone)
{
    const QString name = writeFile("file", 100);
    MemoryMappedFile file(name);
    ASSERT_NE(file.get(0, 100), nullptr);
    QFile maps(QStringLiteral("/proc/self/maps"));
    ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
    for (const QByteArray& line : maps.readAll().split('\n')) {
        if (line.endsWith(QFile::encodeName(name))) {
            EXPECT_EQ(line.split(' ').value(1), "r--s");
        }
    }
    EXPECT_EQ(numMappings(name), 1);
}
