#include "dis_shader.h"

#include "dis_context.h"
#include "ztk_system.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <vector>

namespace zentrak::display {

namespace {

// One driver's message for every program that links.
constexpr char PLEASANT[] = " Link successful.";

void requireShaders() {
    if (!Shader::hasShaders())
        throw Exception("Your graphic card does not support shaders!");
}

} // namespace

Shader::Shader(DisplayGL* display) : Resource(display, STATIC), mHandle(0), mContext(0) {}

// The functions used here came with OpenGL 2.0; a driver of an older version may have the extensions alone.
bool Shader::hasShaders() {
    return DisplayGL::hasExtension("GL_VERSION_2_0") && DisplayGL::hasExtension("GL_ARB_shader_objects") &&
           DisplayGL::hasExtension("GL_ARB_shading_language_100") &&
           DisplayGL::hasExtension("GL_ARB_vertex_shader") &&
           DisplayGL::hasExtension("GL_ARB_fragment_shader");
}

void Shader::compile(const char* filename, const std::string& prefix) {
    const char* name = filename ? filename : "";
    requireShaders();
    if (!canLoad())
        throw Exception("The device can not load files! (when loading %s)", name);
    const am::File file = loadFile(name);
    const unsigned char* data = file->data ? file->data : reinterpret_cast<const unsigned char*>("");
    if (prefix.empty())
        return compile(data, int(file->length), name);
    std::string text = prefix;
    text.append(reinterpret_cast<const char*>(data), size_t(file->length));
    compile(reinterpret_cast<const unsigned char*>(text.data()), int(text.size()), name);
}

void Shader::compile(const unsigned char* data, int size, const char* name) {
    assert(data);
    requireShaders();
    if (mHandle == 0 || !contextIsCurrent(mContext)) {
        createHandle();
        mContext = currentContext();
    }
    const GLchar* dataBajs = reinterpret_cast<const GLchar*>(data);
    GLint dataLength = std::max(size, 0);
    GLint compiled = 0, maxLength = 0;
    GLsizei length = 0;
    GL_CALL(glShaderSource(mHandle, 1, &dataBajs, (const GLint*) &dataLength));
    GL_CALL(glCompileShader(mHandle));
    GL_CALL(glGetShaderiv(mHandle, GL_COMPILE_STATUS, &compiled));
    GL_CALL(glGetShaderiv(mHandle, GL_INFO_LOG_LENGTH, &maxLength));
    std::vector<GLchar> compileMessage(size_t(std::max(maxLength, 0)) + 1);
    GL_CALL(glGetShaderInfoLog(mHandle, maxLength, &length, &compileMessage[0]));
    const char* shown = name ? name : "";
    if (!compiled)
        throw Exception("Could not compile '%s'.\nCompile message:\n%s", shown, &compileMessage[0]);
    if (length > 0)
        ZTK_LOG("info", "display", "Shader '%s' compiled with message (%d chars):\n%s", shown, length,
                &compileMessage[0]);
}

void Shader::releaseHandle() noexcept {
    if (mHandle && contextIsCurrent(mContext))
        glDeleteShader(mHandle);
    mHandle = 0;
}

void VertexShader::createHandle() {
    GL_CALL(mHandle=glCreateShader(GL_VERTEX_SHADER));
    assert(mHandle!=0);
}

void FragmentShader::createHandle() {
    GL_CALL(mHandle=glCreateShader(GL_FRAGMENT_SHADER));
    assert(mHandle!=0);
}

ShaderProgram::ShaderProgram(DisplayGL* display)
    : Resource(display, STATIC), mHandle(0), mLinked(false), mBound(false), mContext(0) {}

ShaderProgram::~ShaderProgram() {
    if (mHandle && contextIsCurrent(mContext))
        glDeleteProgram(mHandle);
}

// A handle of a context that is gone counts as none.
void ShaderProgram::createHandle() {
    if (mHandle && contextIsCurrent(mContext))
        return;
    requireShaders();
    mLinked = mBound = false;
    GL_CALL(mHandle=glCreateProgram());
    assert(mHandle);
    mContext = currentContext();
}

void ShaderProgram::attach(const Shader& shader) {
    createHandle();
    const GLuint attachHandle = shader.getHandle();
    GL_CALL(glAttachShader(mHandle,attachHandle));
}

void ShaderProgram::attach(const Shader& first, const Shader& second) {
    attach(first);
    attach(second);
}

void ShaderProgram::link() {
    createHandle();
    GL_CALL(glBindAttribLocation(mHandle, 6, "tangent0_vs"));
    GL_CALL(glBindAttribLocation(mHandle, 7, "tangent1_vs"));
    GL_CALL(glLinkProgram(mHandle));
    GLint linked = 0, maxLength = 0;
    GLsizei length = 0;
    GL_CALL(glGetProgramiv(mHandle, GL_LINK_STATUS, &linked));
    GL_CALL(glGetProgramiv(mHandle, GL_INFO_LOG_LENGTH, &maxLength));
    std::vector<GLchar> linkMessage(size_t(std::max(maxLength, 0)) + 1);
    GL_CALL(glGetProgramInfoLog(mHandle, maxLength, &length, &linkMessage[0]));
    if (!linked)
        throw Exception("Could not link.\n\nLink message:\n%s", &linkMessage[0]);
    if (length > 0 && std::strncmp(&linkMessage[0], PLEASANT, sizeof PLEASANT - 1) != 0)
        ZTK_LOG("info", "display", "Linked shaderprogram, message (%d):\n%s", length, &linkMessage[0]);
    mLinked = true;
}

void ShaderProgram::link(const std::string& vertexFile, const std::string& fragmentFile) {
    assert(getDisplay());
    VertexShader vertex(getDisplay());
    FragmentShader fragment(getDisplay());
    vertex.compile(vertexFile.c_str(), "");
    fragment.compile(fragmentFile.c_str(), "");
    attach(vertex, fragment);
    link();
}

void ShaderProgram::bind() {
    assert(mHandle);
    assert(mLinked);
    assert(!mBound);
    try {
        GL_CALL(glUseProgram(mHandle));
    } catch (...) { // an error was pending
        glUseProgram(0);
        throw;
    }
    mBound = true;
}

void ShaderProgram::unbind() {
    assert(mHandle);
    assert(mLinked);
    assert(mBound);
    GL_CALL(glUseProgram(0));
    mBound = false;
}

GLint ShaderProgram::getAttrib(const std::string& name) const {
    assert(mHandle!=0);
    assert(mLinked);
    GLint res = -1;
    GL_CALL(res = glGetAttribLocation(mHandle, name.c_str()));
    assert(res>=0);
    return res;
}

void ShaderProgram::release() noexcept {
    glUseProgram(0);
    mBound = false;
}

// Looks the uniform up and uploads its value, with the program bound meanwhile.
template <class Upload>
void ShaderProgram::setUniform(const std::string& name, Upload upload) {
    assert(mLinked);
    const bool borrowed = !mBound;
    if (borrowed)
        bind();
    try {
        GLint location = -1;
        GL_CALL(location = glGetUniformLocation(mHandle, name.c_str()));
        upload(location);
    } catch (...) {
        if (borrowed)
            release();
        throw;
    }
    if (borrowed)
        unbind();
}

void ShaderProgram::set(const std::string& name, int value) {
    setUniform(name, [&](GLint location) { GL_CALL(glUniform1i(location, value)); });
}

void ShaderProgram::set(const std::string& name, float value) {
    setUniform(name, [&](GLint location) { GL_CALL(glUniform1f(location, value)); });
}

void ShaderProgram::set(const std::string& name, const mathbase::Vector2f& value) {
    setUniform(name, [&](GLint location) { GL_CALL(glUniform2f(location, value.x, value.y)); });
}

void ShaderProgram::set(const std::string& name, const mathbase::Vector3f& value) {
    setUniform(name, [&](GLint location) { GL_CALL(glUniform3f(location, value.x, value.y, value.z)); });
}

void ShaderProgram::set(const std::string& name, const mathbase::Vector4f& value) {
    setUniform(name,
               [&](GLint location) { GL_CALL(glUniform4f(location, value.x, value.y, value.z, value.w)); });
}

void ShaderProgram::set(const std::string& name, const mathbase::MatrixGL& value) {
    setUniform(name, [&](GLint location) { GL_CALL(glUniformMatrix4fv(location, 1, false, value.mData)); });
}

void ShaderProgram::set(const std::string& name, const mathbase::Vector2f* values, int count) {
    static_assert(sizeof(mathbase::Vector2f) == 2 * sizeof(float));
    setUniform(name, [&](GLint location) {
        if (values && count > 0)
            GL_CALL(glUniform2fv(location, count, reinterpret_cast<const GLfloat*>(values)));
    });
}

} // namespace zentrak::display
