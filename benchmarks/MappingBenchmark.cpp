// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Rows.h"

#include <Kestrin/Orv/Memory.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <boost/iostreams/device/mapped_file.hpp>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <random>
#include <string>

// Maps a range of a file, reads its first and its last byte, and releases it. The size of a row is
// the size of the range in KiB. The range begins inside a page.

using namespace OrvBench;
using Kestrin::Orv::MemoryMappedFile;

namespace {

constexpr std::size_t rangeOffset = 3 * 4096 + 100;

int endsOf(const unsigned char* range, std::size_t size)
{
    return 256 * range[0] + range[size - 1];
}

/// A file of random bytes that is removed at the end.
class SampleFile
{
public:
    explicit SampleFile(std::size_t size)
        : filePath(directory.filePath(QStringLiteral("sample")))
    {
        std::mt19937 random(5);
        QByteArray bytes(static_cast<int>(size), '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        QFile file(filePath);
        requireSame(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
                    "the sample file");
    }

    const QString& path() const { return filePath; }

private:
    QTemporaryDir directory;
    QString filePath;
};

int readMapped(MemoryMappedFile& file, std::size_t size)
{
    unsigned char* range = file.get(rangeOffset, size);
    requireSame(range != nullptr, "a mapped range");
    const int ends = endsOf(range, size);
    file.release(range);
    return ends;
}

int readByMmap(int descriptor, std::size_t fileSize, std::size_t size)
{
    static const std::size_t pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    if (rangeOffset >= fileSize || size > fileSize - rangeOffset)
        return -1;
    const std::size_t inPage = rangeOffset % pageSize;
    void* mapped = mmap(nullptr, size + inPage, PROT_READ, MAP_SHARED, descriptor,
                        static_cast<off_t>(rangeOffset - inPage));
    requireSame(mapped != MAP_FAILED, "a range by mmap");
    const int ends = endsOf(static_cast<unsigned char*>(mapped) + inPage, size);
    munmap(mapped, size + inPage);
    return ends;
}

/// A mapped_file_source maps one range, which begins at a page. It opens the file itself.
int readByIostreams(const std::string& path, std::size_t size)
{
    using Source = boost::iostreams::mapped_file_source;
    static const std::size_t alignment = static_cast<std::size_t>(Source::alignment());
    const std::size_t inPage = rangeOffset % alignment;
    const Source source(path, size + inPage, static_cast<boost::intmax_t>(rangeOffset - inPage));
    return endsOf(reinterpret_cast<const unsigned char*>(source.data()) + inPage, size);
}

struct Subjects
{
    explicit Subjects(std::size_t rangeSize)
        : size(rangeSize)
        , fileSize(rangeOffset + rangeSize + 12345)
        , sample(fileSize)
        , mappedFile(sample.path())
        , path(sample.path().toStdString())
        , descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        requireSame(descriptor >= 0, "the sample file, opened");
        QFile file(sample.path());
        requireSame(file.open(QIODevice::ReadOnly), "the sample file, read");
        const QByteArray bytes = file.readAll();
        const int expected =
            endsOf(reinterpret_cast<const unsigned char*>(bytes.constData()) + rangeOffset, size);
        requireEqual(readMapped(mappedFile, size), expected, "a mapped range");
        requireEqual(readByMmap(descriptor, fileSize, size), expected, "a range by mmap");
        requireEqual(readByIostreams(path, size), expected, "a range by Boost.Iostreams");
    }
    ~Subjects() { close(descriptor); }

    std::size_t size;
    std::size_t fileSize;
    SampleFile sample;
    MemoryMappedFile mappedFile;
    std::string path;
    int descriptor;
};

void addRows(int kibibytes)
{
    const auto add = [kibibytes](const char* subject, auto read) {
        addRow("mapping", "borrow a range", subject, kibibytes, [=](benchmark::State& state) {
            static Cache<Subjects> cache;
            Subjects& s = cache.get(std::to_string(kibibytes), [&] {
                return std::make_unique<Subjects>(1024 * static_cast<std::size_t>(kibibytes));
            });
            for (auto _ : state)
                benchmark::DoNotOptimize(read(s));
        });
    };
    add("orv", [](Subjects& s) { return readMapped(s.mappedFile, s.size); });
    add("mmap", [](Subjects& s) { return readByMmap(s.descriptor, s.fileSize, s.size); });
    add("iostreams", [](Subjects& s) { return readByIostreams(s.path, s.size); });
}

const bool registered = [] {
    for (const int kibibytes : {10, 100, 10000})
        addRows(kibibytes);
    return true;
}();

} // namespace
