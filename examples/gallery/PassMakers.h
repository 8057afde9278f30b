// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_PASSMAKERS_H
#define GALLERY_PASSMAKERS_H

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Kestrin {
namespace Orv {
class RenderPass;
} // namespace Orv
} // namespace Kestrin

namespace Gallery {

/// The types of this program's passes.
QStringList passTypes();

/// Makes a pass of a type, with its ports and their defaults; null if there is no such type.
/// \param name the name of the pass in messages
Kestrin::Orv::RenderPass* makePass(const QString& type, const QString& name);

} // namespace Gallery

#endif
