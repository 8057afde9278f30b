// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_RENDERERINTERNALS_H
#define ORV_TESTS_RENDERERINTERNALS_H

#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QVector>

#include <cstring>

/// The four operations that the library exports for its own use. Their class is private, so they
/// are declared here as functions that take the object first, which is how they are called.
namespace internals {

struct Impl;

void walk(Impl* impl, int node, Kestrin::Orv::RenderCallbacks* callbacks,
          QVector<bool>& visited) __asm__("_ZN7Kestrin3Orv8Renderer4Impl4walkEiPNS0_15"
                                          "RenderCallbacksER7QVectorIbE");
int getActiveOutputUsers(Impl* impl, int node, int output, const QVector<bool>& visited) __asm__(
    "_ZN7Kestrin3Orv8Renderer4Impl20getActiveOutputUsersEiiRK7QVectorIbE");
void setRenderPassInputs(Impl* impl,
                         int node) __asm__("_ZN7Kestrin3Orv8Renderer4Impl19setRenderPassInputsEi");
bool render(Impl* impl, int node, Kestrin::Orv::RenderCallbacks* callbacks) __asm__(
    "_ZN7Kestrin3Orv8Renderer4Impl6renderEiPNS0_15RenderCallbacksE");

/// A renderer is the pointer to its virtual table, then the pointer to its private data.
inline Impl* of(const Kestrin::Orv::Renderer& renderer)
{
    static_assert(sizeof(Kestrin::Orv::Renderer) == 2 * sizeof(void*), "two pointers");
    Impl* impl = nullptr;
    std::memcpy(&impl, reinterpret_cast<const char*>(&renderer) + sizeof(void*), sizeof(impl));
    return impl;
}

} // namespace internals

#endif
