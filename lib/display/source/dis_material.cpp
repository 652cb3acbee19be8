#include "dis_material.h"

#include "dis_texture.h"

#include <cassert>
#include <memory>

namespace zentrak::display {

MaterialAttrib::~MaterialAttrib() = default;

void AttribTexture::set(const std::string& name, ShaderProgram& program, int& usedTextureChannels) {
    assert(usedTextureChannels < 32);
    program.set(name, usedTextureChannels);
    GL_CALL(glActiveTexture(GLenum(GL_TEXTURE0 + usedTextureChannels)));
    ++usedTextureChannels;
    if (mTexture)
        mTexture->bind(-1);
}

Material::Material(ShaderProgram* program) : mProgram(program) {}

Material::~Material() {
    clearAttribs();
}

void Material::set(const std::string& name, Texture* texture) {
    if (auto* same = dynamic_cast<AttribTexture*>(findAttrib(name)))
        same->change(texture);
    else
        replaceAttrib(name, new AttribTexture(texture));
}

// The attribute to change.
MaterialAttrib* Material::findAttrib(const std::string& name) {
    if (isBound())
        assert(false); // values are applied by bind
    const auto found = mAttribs.find(name);
    return found == mAttribs.end() ? nullptr : found->second;
}

// Takes the attribute over.
void Material::replaceAttrib(const std::string& name, MaterialAttrib* attrib) {
    std::unique_ptr<MaterialAttrib> owned(attrib);
    if (isBound())
        assert(false); // values are applied by bind
    MaterialAttrib*& slot = mAttribs[name];
    delete slot;
    slot = owned.release();
}

void Material::bind() {
    assert(mProgram);
    mProgram->bind();
    int usedTextureChannels = 0;
    try {
        for (const auto& [name, attrib] : mAttribs)
            attrib->set(name, *mProgram, usedTextureChannels);
    } catch (...) {
        mProgram->release();
        throw;
    }
}

void Material::unbind() {
    assert(mProgram);
    mProgram->unbind();
}

void Material::removeAttrib(const std::string& name) {
    const auto found = mAttribs.find(name);
    if (found == mAttribs.end())
        return;
    delete found->second;
    mAttribs.erase(found);
}

void Material::clearAttribs() {
    for (const auto& [name, attrib] : mAttribs)
        delete attrib;
    mAttribs.clear();
}

void Material::clear() {
    clearAttribs();
    mProgram = nullptr;
}

} // namespace zentrak::display
