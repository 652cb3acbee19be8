// Programs of the OpenGL shading language.
#pragma once

#include "dis_resource.h"
#include "mb_matrix4x4col.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <GL/glew.h>
#include <string>

namespace zentrak::display {

// One source text, compiled.
class Shader : public Resource {
public:
    explicit Shader(DisplayGL* display);
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    static bool hasShaders(); // OpenGL 2.0 and the four extensions that programs need

    // Compiles a file, with `prefix` in front of its text: lines of #define that end in a line break of their
    // own, or nothing. Throws "Your graphic card does not support shaders!", "The device can not load files!
    // (when loading %s)", what loadFile throws, and what the other form throws.
    void compile(const char* filename, const std::string& prefix);

    // Compiles `length` bytes; `name` is for messages. Asserts "data". Throws "Could not compile
    // '%s'.\nCompile message:\n%s" with the driver's log.
    void compile(const unsigned char* data, int length, const char* name);

    GLuint getHandle() const { return mHandle; } // 0 until compiled

protected:
    virtual void createHandle() = 0;

    void releaseHandle() noexcept; // deletes the handle, if its context still lives

    GLuint mHandle;

private:
    int mContext; // the opening of the window that the handle belongs to
};

class VertexShader : public Shader {
public:
    explicit VertexShader(DisplayGL* display) : Shader(display) {}
    ~VertexShader() override { releaseHandle(); }

protected:
    void createHandle() override;
};

class FragmentShader : public Shader {
public:
    explicit FragmentShader(DisplayGL* display) : Shader(display) {}
    ~FragmentShader() override { releaseHandle(); }

protected:
    void createHandle() override;
};

// Shaders linked into a program, and its uniforms by name. It is linked once for a context; after the window
// was opened again, attach and link make a new program to replace the lost one.
class ShaderProgram : public Resource {
public:
    explicit ShaderProgram(DisplayGL* display);
    ~ShaderProgram() override;
    ShaderProgram(const ShaderProgram&) = delete;
    ShaderProgram& operator=(const ShaderProgram&) = delete;

    // The shaders may go once the program is linked. Throw "Your graphic card does not support shaders!".
    void attach(const Shader& shader);
    void attach(const Shader& first, const Shader& second);

    // Links what is attached, with the attributes "tangent0_vs" and "tangent1_vs" in slots 6 and 7, or
    // compiles, attaches and links two files. Throws "Could not link.\n\nLink message:\n%s" with the driver's
    // log. The form with files asserts "getDisplay()" and throws what Shader::compile throws.
    void link();
    void link(const std::string& vertexFile, const std::string& fragmentFile);

    void bind();   // asserts "mHandle", "mLinked" and "!mBound"
    void unbind(); // asserts "mHandle", "mLinked" and "mBound"
    bool isBound() const { return mBound; }
    bool isLinked() const { return mLinked; }

    // The slot of an attribute, which must exist. Asserts "mHandle!=0", "mLinked" and "res>=0".
    GLint getAttrib(const std::string& name) const;

    // A uniform's value; kept by the program. A program that is not bound is bound for the call. A name that
    // the program lacks has no effect. Asserts "mLinked". The last form is an array of `count` elements.
    void set(const std::string& name, int value);
    void set(const std::string& name, float value);
    void set(const std::string& name, const mathbase::Vector2f& value);
    void set(const std::string& name, const mathbase::Vector3f& value);
    void set(const std::string& name, const mathbase::Vector4f& value);
    void set(const std::string& name, const mathbase::MatrixGL& value);
    void set(const std::string& name, const mathbase::Vector2f* values, int count);

private:
    friend class Material;

    void createHandle();
    void release() noexcept; // unbind without a check
    template <class Upload>
    void setUniform(const std::string& name, Upload upload);

    GLuint mHandle; // 0 until something is attached or linked
    bool mLinked;
    bool mBound;
    int mContext; // the opening of the window that the handle belongs to
};

} // namespace zentrak::display
