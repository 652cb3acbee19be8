#include "refuse_gl.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glx.h>
#include <cstring>
#include <dlfcn.h>

namespace {

using Pointer = void*;

int callsLeft = 0; // before the one that fails
bool refused = false;
bool outOfMemory = false; // not yet reported
bool separate = false;

bool refuse() {
    if (callsLeft == 0 || --callsLeft > 0)
        return false;
    return refused = true;
}

bool refuseMemory() {
    const bool now = refuse();
    outOfMemory |= now;
    return now;
}

template <class Function>
Function* driver(const char* name, Function*) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

namespace zentrak::test {

void refuseGl(int number) {
    callsLeft = number;
    refused = outOfMemory = false;
}

bool wasGlRefused() {
    return refused;
}

void separateGl(bool now) {
    separate = now;
}

} // namespace zentrak::test

// Functions of OpenGL 1.1, which are linked.

#define LINKED(result, name, parameters, arguments)                                                          \
    extern "C" result name parameters {                                                                      \
        static const auto real = driver(#name, &name);                                                       \
        return refuseMemory() ? result() : real arguments;                                                   \
    }

LINKED(void, glGenTextures, (GLsizei count, GLuint* names), (count, names))
LINKED(void, glTexImage1D,
       (GLenum target, GLint level, GLint internal, GLsizei width, GLint border, GLenum format, GLenum type,
        const GLvoid* data),
       (target, level, internal, width, border, format, type, data))
LINKED(void, glTexImage2D,
       (GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height, GLint border,
        GLenum format, GLenum type, const GLvoid* data),
       (target, level, internal, width, height, border, format, type, data))

extern "C" GLenum glGetError() {
    static const auto real = driver("glGetError", &glGetError);
    if (!outOfMemory)
        return real();
    outOfMemory = false;
    return GL_OUT_OF_MEMORY;
}

extern "C" const GLubyte* glGetString(GLenum name) {
    static const auto real = driver("glGetString", &glGetString);
    return separate ? nullptr : real(name);
}

// Later functions, which GLEW looks up by name.

namespace {

struct LookedUp {
    const char* name;
    __GLXextFuncPtr ours;
    __GLXextFuncPtr* real;
};

#define LOOKED_UP(result, name, refuse, parameters, arguments)                                               \
    __GLXextFuncPtr real_##name;                                                                             \
    result ours_##name parameters {                                                                          \
        return refuse() ? result() : reinterpret_cast<decltype(&ours_##name)>(real_##name) arguments;        \
    }

LOOKED_UP(void, glGenBuffersARB, refuseMemory, (GLsizei count, GLuint* names), (count, names))
LOOKED_UP(void, glBufferDataARB, refuseMemory,
          (GLenum target, GLsizeiptrARB size, const void* data, GLenum usage), (target, size, data, usage))
LOOKED_UP(Pointer, glMapBuffer, refuseMemory, (GLenum target, GLenum access), (target, access))
LOOKED_UP(void, glGenFramebuffersEXT, refuseMemory, (GLsizei count, GLuint* names), (count, names))
LOOKED_UP(void, glGenRenderbuffersEXT, refuseMemory, (GLsizei count, GLuint* names), (count, names))
LOOKED_UP(void, glRenderbufferStorageEXT, refuseMemory,
          (GLenum target, GLenum internal, GLsizei width, GLsizei height), (target, internal, width, height))
LOOKED_UP(void, glGenerateMipmapEXT, refuseMemory, (GLenum target), (target))
LOOKED_UP(GLuint, glCreateShader, refuseMemory, (GLenum type), (type))
LOOKED_UP(GLuint, glCreateProgram, refuseMemory, (), ())
LOOKED_UP(void, glShaderSource, refuseMemory,
          (GLuint shader, GLsizei count, const GLchar* const* text, const GLint* length),
          (shader, count, text, length))
LOOKED_UP(void, glCompileShader, refuse, (GLuint shader), (shader))
LOOKED_UP(void, glLinkProgram, refuse, (GLuint program), (program))

#define ENTRY(name)                                                                                          \
    { #name, reinterpret_cast < __GLXextFuncPtr>(ours_##name), &real_##name }

const LookedUp lookedUp[] = {
    ENTRY(glGenBuffersARB),      ENTRY(glBufferDataARB),       ENTRY(glMapBuffer),
    ENTRY(glGenFramebuffersEXT), ENTRY(glGenRenderbuffersEXT), ENTRY(glRenderbufferStorageEXT),
    ENTRY(glGenerateMipmapEXT),  ENTRY(glCreateShader),        ENTRY(glCreateProgram),
    ENTRY(glShaderSource),       ENTRY(glCompileShader),       ENTRY(glLinkProgram),
};

} // namespace

extern "C" __GLXextFuncPtr glXGetProcAddressARB(const GLubyte* name) {
    static const auto real = driver("glXGetProcAddressARB", &glXGetProcAddressARB);
    const __GLXextFuncPtr found = real(name);
    for (const LookedUp& function : lookedUp)
        if (found && std::strcmp(function.name, reinterpret_cast<const char*>(name)) == 0) {
            *function.real = found;
            return function.ours;
        }
    return found;
}
