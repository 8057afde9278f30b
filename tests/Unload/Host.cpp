// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Loads a plugin, takes every string that the plugin has from the libraries, unloads it with the
// libraries, and reads the strings.
//
//     UnloadHost [--vanish] PLUGIN FUNCTION DIRECTORY AT_LEAST LIBRARY...
//
// A string whose memory belongs to something that was loaded with the plugin is not read but
// reported: it would end the program. PLUGIN and every LIBRARY must be gone in the end. --vanish
// deletes the program's own file first. Fewer strings than AT_LEAST are a failure.

#include "Strings.h"

#include <QtCore/QVector>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <unistd.h>

namespace {

struct Range
{
    std::uintptr_t begin = 0, end = 0;
};

/// Where each file is mapped, from its first page to its last, with the zeroed pages that follow.
std::map<std::string, Range> mappedFiles()
{
    std::map<std::string, Range> files;
    std::ifstream maps("/proc/self/maps");
    std::string last;
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0, end = 0;
        int pathAt = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx %*s %*s %*s %*s %n", &begin, &end, &pathAt) < 2)
            continue;
        const std::string path = line.substr(static_cast<std::size_t>(pathAt));
        if (path.empty()) {
            if (!last.empty() && files[last].end == begin)
                files[last].end = end;
            continue;
        }
        last = path;
        if (path[0] != '/')
            continue;
        Range& range = files[path];
        if (range.end == 0)
            range.begin = begin;
        range.end = end;
    }
    return files;
}

std::u16string copyOf(const QString& text)
{
    std::u16string copy;
    for (const QChar c : text)
        copy.push_back(static_cast<char16_t>(c.unicode()));
    return copy;
}

std::string copyOf(const QByteArray& bytes)
{
    std::string copy;
    for (const char c : bytes)
        copy.push_back(c);
    return copy;
}

/// Strings of one type and what they were when they were taken.
template<typename String, typename Copy>
struct Kept
{
    QVector<String> strings;
    std::vector<std::string> names;
    std::vector<Copy> copies;
    std::vector<std::string> deadIn; ///< the file that holds the string's memory; empty for none
    std::set<std::pair<std::string, Copy>> known[2];

    void add(const char* what, const String& string, const std::string& file)
    {
        const Copy copy = copyOf(string);
        if (!known[file.empty() ? 0 : 1].emplace(what, copy).second)
            return;
        strings.append(string);
        names.emplace_back(what);
        copies.push_back(copy);
        deadIn.push_back(file);
    }
};

std::string shown(const std::u16string& copy)
{
    std::string text;
    for (const char16_t c : copy.substr(0, 100))
        text += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '?';
    return text;
}
std::string shown(const std::string& copy)
{
    return copy.substr(0, 100);
}

class Keeper : public Strings
{
public:
    std::map<std::string, Range> unloadable; ///< the files that came with the plugin

    void take(const char* what, const QString& text) override
    {
        QString shared = text;
        texts.add(what, text, fileOf(shared.data_ptr(), text.constData()));
    }
    void take(const char* what, const QByteArray& bytes) override
    {
        QByteArray shared = bytes;
        blobs.add(what, bytes, fileOf(shared.data_ptr(), bytes.constData()));
    }

    std::size_t numStrings() const { return texts.names.size() + blobs.names.size(); }
    int check() { return check(texts) + check(blobs); }

private:
    /// The file that is to be unloaded and holds the header or the characters of a string.
    std::string fileOf(const void* header, const void* characters) const
    {
        for (const auto& [file, range] : unloadable) {
            for (const void* pointer : {header, characters}) {
                const auto address = reinterpret_cast<std::uintptr_t>(pointer);
                if (address >= range.begin && address < range.end)
                    return file;
            }
        }
        return std::string();
    }

    template<typename String, typename Copy>
    static int check(Kept<String, Copy>& kept)
    {
        int failures = 0;
        for (std::size_t i = 0; i < kept.names.size(); ++i) {
            const String& string = kept.strings.at(static_cast<int>(i));
            std::string wrong;
            if (!kept.deadIn[i].empty())
                wrong = "lies in unloaded memory of " + kept.deadIn[i];
            else if (copyOf(string) != kept.copies[i])
                wrong = "has changed to: " + shown(copyOf(string));
            if (wrong.empty())
                continue;
            ++failures;
            std::printf("string %zu (%s, \"%s\") %s\n", i, kept.names[i].c_str(),
                        shown(kept.copies[i]).c_str(), wrong.c_str());
        }
        return failures;
    }

    Kept<QString, std::u16string> texts;
    Kept<QByteArray, std::string> blobs;
};

Keeper keeper;

void keepMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    keeper.take("message", text);
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (!arguments.empty() && arguments[0] == "--vanish") {
        arguments.erase(arguments.begin());
        if (unlink(argv[0]) != 0) {
            std::printf("cannot delete %s\n", argv[0]);
            return 2;
        }
    }
    if (arguments.size() < 4) {
        std::printf("usage: UnloadHost [--vanish] PLUGIN FUNCTION DIRECTORY AT_LEAST LIBRARY...\n");
        return 2;
    }
    const std::string plugin = arguments[0];
    const std::string function = arguments[1];
    const std::string directory = arguments[2];
    const std::size_t atLeast = std::strtoul(arguments[3].c_str(), nullptr, 10);
    arguments.erase(arguments.begin() + 1, arguments.begin() + 4);
    const std::map<std::string, Range> before = mappedFiles();
    void* handle = dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        std::printf("%s\n", dlerror());
        return 2;
    }
    for (const auto& [file, range] : mappedFiles()) {
        if (before.count(file) == 0)
            keeper.unloadable.emplace(file, range);
    }
    void* symbol = dlsym(handle, function.c_str());
    if (!symbol) {
        std::printf("%s\n", dlerror());
        return 2;
    }
    const QtMessageHandler previous = qInstallMessageHandler(&keepMessage);
    int failures = reinterpret_cast<TakeStrings>(symbol)(keeper, directory.c_str()) ? 0 : 1;
    qInstallMessageHandler(previous);

    dlclose(handle);
    for (const std::string& library : arguments) {
        if (dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
            ++failures;
            std::printf("%s is still loaded: see readelf -Ws for UNIQUE symbols\n",
                        library.c_str());
        }
    }
    failures += keeper.check();
    std::printf("%zu strings, %d failures\n", keeper.numStrings(), failures);
    if (keeper.numStrings() < atLeast) {
        ++failures;
        std::printf("there should be %zu at least\n", atLeast);
    }
    std::fflush(stdout);
    // The strings that died would end the program when they are released.
    std::_Exit(failures == 0 ? 0 : 1);
}
