// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/RenderPass.h>

namespace Kestrin {
namespace Orv {

RenderPass::RenderPass() = default;

RenderPass::~RenderPass() = default;

bool RenderPass::isFinished() const
{
    return true;
}

} // namespace Orv
} // namespace Kestrin
