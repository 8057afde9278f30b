// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PASSCAST_H
#define KESTRIN_ORV_INSPECT_PASSCAST_H

#include <Kestrin/Orv/RenderPass.h>

namespace Kestrin::Orv::Inspect {

/// Whether \p pass can be asked for its type. A pass of a host that was compiled with -fno-rtti
/// cannot: where its table of virtual functions should point to its type, just before the first
/// function, there is null, and a dynamic_cast would follow it.
inline bool knowsItsType(const RenderPass& pass)
{
#ifdef __GXX_ABI_VERSION // tables as the Itanium C++ ABI lays them out: by g++ and clang++
    const void* const* const table = *reinterpret_cast<const void* const* const*>(&pass);
    return table[-1] != nullptr;
#else
    (void)pass;
    return true;
#endif
}

/// dynamic_cast for passes of every host: null for one that cannot be asked for its type, which is
/// none of this library's.
template<typename Pass>
const Pass* passCast(const RenderPass* pass)
{
    return pass && knowsItsType(*pass) ? dynamic_cast<const Pass*>(pass) : nullptr;
}

template<typename Pass>
Pass* passCast(RenderPass* pass) ///< the same
{
    return const_cast<Pass*>(passCast<Pass>(static_cast<const RenderPass*>(pass)));
}

} // namespace Kestrin::Orv::Inspect

#endif
