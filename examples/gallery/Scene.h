// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_SCENE_H
#define GALLERY_SCENE_H

#include "Model.h"

#include <epoxy/gl.h>

namespace Gallery {

class ShaderProgram;

/// A model on a ground plane, in the buffers of the current GL context.
class Scene
{
public:
    explicit Scene(Model model);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    const Model& model() const { return content; }
    /// Draws all batches, each after its material has been set on the program.
    void draw(const ShaderProgram& program) const;

private:
    void appendGround();

    Model content;
    GLuint vertexArray = 0;
    GLuint buffers[2] = {0, 0};
};

} // namespace Gallery

#endif
