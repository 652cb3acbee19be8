#include "dis_glcheck.h"

#include "ztk_system.h"

#include <GL/glew.h>

namespace zentrak::display {

const char* glErrorName(unsigned int code) {
    switch (code) {
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_STACK_OVERFLOW:
        return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW:
        return "GL_STACK_UNDERFLOW";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    case GL_TABLE_TOO_LARGE:
        return "GL_TABLE_TOO_LARGE";
    default:
        return nullptr;
    }
}

void GL_REPORT_ERROR(const char* file, int line, const char* text) {
    const GLenum code = glGetError();
    if (code == GL_NO_ERROR) [[likely]]
        return;
    if (const char* name = glErrorName(code))
        throw Exception("GL-error at [%d] %s\nLine: %s\nError: '%s'\n", line, file, text, name);
}

} // namespace zentrak::display
