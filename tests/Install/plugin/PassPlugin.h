// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef PASSPLUGIN_H
#define PASSPLUGIN_H

#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QObject>

/// What host and plugin agree upon.
class PassPlugin
{
public:
    virtual ~PassPlugin() = default;
    /// A new pass with an input "value" and an output "doubled".
    virtual Kestrin::Orv::RenderPass* makePass() = 0;
    /// Whether the plugin sees that a pass, of anyone's making, derives from RenderPassHelper.
    virtual bool isHelper(Kestrin::Orv::RenderPass* pass) = 0;
};
Q_DECLARE_INTERFACE(PassPlugin, "Kestrin.Orv.Tests.PassPlugin/1")

#endif
