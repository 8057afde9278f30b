// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_ORVCORE_H
#define KESTRIN_ORV_ORVCORE_H

/// @file
/// Includes every public header of libOrvCore.

/// @namespace Kestrin
/// The outer namespace of OrvCore.

/// @namespace Kestrin::Orv
/// The public interface of libOrvCore: a graph of render passes, and the renderer that runs it.

#include <Kestrin/Orv/Core.h>
#include <Kestrin/Orv/Export.h>
#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Graphviz.h>
#include <Kestrin/Orv/HistogramFrameTimes.h>
#include <Kestrin/Orv/Memory.h>
#include <Kestrin/Orv/ProfilerHelper.h>
#include <Kestrin/Orv/RenderPass.h>
#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>
#include <Kestrin/Orv/Walkers.h>

#endif
