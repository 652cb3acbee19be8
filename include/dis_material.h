// A program with a named set of uniform values and textures.
#pragma once

#include "dis_shader.h"

#include <map>
#include <string>
#include <type_traits>
#include <utility>

namespace zentrak::display {

class Texture;

// One value of a material.
class MaterialAttrib {
public:
    virtual ~MaterialAttrib();
    virtual void set(const std::string& name, ShaderProgram& program, int& usedTextureChannels) = 0;
};

// A value of any type that ShaderProgram::set takes.
template <class T>
class MaterialAttribT : public MaterialAttrib {
public:
    explicit MaterialAttribT(T value) : mValue(std::move(value)) {}
    void set(const std::string& name, ShaderProgram& program, int&) override { program.set(name, mValue); }
    void change(const T& value) { mValue = value; }

private:
    T mValue;
};

// A texture, which takes the next free unit. Asserts "usedTextureChannels < 32".
class AttribTexture : public MaterialAttrib {
public:
    explicit AttribTexture(Texture* texture) : mTexture(texture) {}
    void set(const std::string& name, ShaderProgram& program, int& usedTextureChannels) override;
    void change(Texture* texture) { mTexture = texture; }

private:
    Texture* mTexture; // not owned; null leaves the unit as it is
};

class Material {
public:
    explicit Material(ShaderProgram* program); // not owned; may be null until bind
    ~Material();
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;

    void setProgram(ShaderProgram* program) { mProgram = program; }
    ShaderProgram* getProgram() const { return mProgram; }

    // A value for bind to set, replacing an older one of this name. Asserts "false" while the program is
    // bound. A plain value or a texture that replaces one of its own kind allocates nothing.
    template <class T>
    void set(const std::string& name, T value) {
        if constexpr (std::is_trivially_copyable_v<T>)
            if (auto* same = dynamic_cast<MaterialAttribT<T>*>(findAttrib(name)))
                return same->change(value);
        replaceAttrib(name, new MaterialAttribT<T>(std::move(value)));
    }
    void set(const std::string& name, Texture* texture); // not owned

    // Binds the program and sets every value, in the order of the names; textures go to units 0, 1, ... in
    // that order, and the last of these stays active. Asserts "mProgram".
    void bind();
    void unbind(); // the program alone: textures stay bound. Asserts "mProgram"
    bool isBound() const { return mProgram && mProgram->isBound(); }

    void removeAttrib(const std::string& name); // nothing if it is not there
    void clearAttribs();
    void clear(); // the values and the program

private:
    MaterialAttrib* findAttrib(const std::string& name); // null if there is none
    void replaceAttrib(const std::string& name, MaterialAttrib* attrib);

    ShaderProgram* mProgram;                         // not owned
    std::map<std::string, MaterialAttrib*> mAttribs; // owned
};

} // namespace zentrak::display
