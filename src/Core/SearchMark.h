// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_SEARCHMARK_H
#define KESTRIN_ORV_SEARCHMARK_H

namespace Kestrin {
namespace Orv {

/// What a search upstream keeps of a node, in a byte: whether the node has been reached, and which
/// output of it was traced last.
///
/// The second saves work in groups: the readers of one group output lead to one producer, so the
/// walk down into the group is made for the first reader and left out for the next ones.
class SearchMark
{
public:
    explicit SearchMark(unsigned char& byteOfNode)
        : byte(byteOfNode)
    {
    }
    /// False when the node was reached before.
    bool reach()
    {
        const bool isNew = !(byte & 1);
        byte |= 1;
        return isNew;
    }
    /// False when this very output is the one that was traced last. Outputs from 127 on do not fit
    /// into the byte and are traced each time.
    bool trace(int output)
    {
        const int number = output + 1;
        if (byte >> 1 == number)
            return false;
        if (number < 128)
            byte = static_cast<unsigned char>(number << 1 | (byte & 1));
        return true;
    }

private:
    unsigned char& byte;
};

} // namespace Orv
} // namespace Kestrin

#endif
