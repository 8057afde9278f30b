// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_WALKFRAME_H
#define KESTRIN_ORV_WALKFRAME_H

namespace Kestrin {
namespace Orv {

/// A node on the path of a bottom-up walker. The walker itself holds only the top frame.
struct WalkFrame
{
    int node;
    int nextIndex;    // the next input or child of `node` to be examined
    WalkFrame* below; // null at the bottom
};

} // namespace Orv
} // namespace Kestrin

#endif
