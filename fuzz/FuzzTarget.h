// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_FUZZ_FUZZTARGET_H
#define ORV_FUZZ_FUZZTARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Aborts the run on an error, so that the fuzzer keeps the input.
inline void expectNothingWrong(const std::string& wrong)
{
    if (wrong.empty())
        return;
    std::fprintf(stderr, "%s\n", wrong.c_str());
    std::abort();
}

inline void expect(bool holds, const char* what)
{
    if (!holds)
        expectNothingWrong(what);
}

/// Reads values from an input. Returns zeros at its end.
class Bytes
{
public:
    Bytes(const std::uint8_t* first, std::size_t count)
        : next(first)
        , left(count)
    {
    }

    bool empty() const { return left == 0; }
    std::size_t size() const { return left; }
    const std::uint8_t* data() const { return next; }

    std::uint8_t byte()
    {
        if (left == 0)
            return 0;
        --left;
        return *next++;
    }
    std::uint32_t word()
    {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | byte();
        return value;
    }

private:
    const std::uint8_t* next;
    std::size_t left;
};

#endif
