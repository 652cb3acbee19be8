// Textures and programs as the effects load them in setup().
#pragma once

#include "dis_shader.h"
#include "dis_texture.h"

#include <string>

namespace zentrak::kindler {

// Made from a file once; a second loadFile() changes nothing.
class EffectTexture : public display::Texture {
public:
    EffectTexture() : Texture(nullptr) {}

    // Throws what Texture::load() and Texture::init() throw.
    void loadFile(display::DisplayGL& display, const std::string& name, bool mipmaps);
};

// Linked from two files once for each opening of the window.
class EffectProgram : public display::ShaderProgram {
public:
    EffectProgram() : ShaderProgram(nullptr) {}

    // Throws what ShaderProgram::link() throws.
    void linkFiles(display::DisplayGL& display, const std::string& vertexFile,
                   const std::string& fragmentFile);

private:
    int mLinkedContext = -1; // DisplayGL::mContextCount at the time
};

} // namespace zentrak::kindler
