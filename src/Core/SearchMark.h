// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_SEARCHMARK_H
#define KESTRIN_ORV_SEARCHMARK_H

namespace Kestrin {
namespace Orv {

/// The state of a node in a search upstream, in one byte: whether the node has been reached, and
/// which of its outputs was traced last.
///
/// The second part saves work in groups. All readers of a group output lead to one producer, so the
/// walk down into the group is needed only for the first reader.
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
    /// False when this output is the one that was traced last. Outputs from 127 on do not fit into
    /// the byte and are traced each time.
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
