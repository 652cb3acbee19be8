// The check after every OpenGL call: a pending error becomes an exception that names file, line and call.
#pragma once

namespace zentrak::display {

// Throws Exception "GL-error at [%d] %s\nLine: %s\nError: '%s'\n" with line, file, text and the error's name
// if an OpenGL error is pending; codes without a name (see glErrorName) pass. Costs one glGetError if none
// is. Not allowed between glBegin and glEnd.
void GL_REPORT_ERROR(const char* file, int line, const char* text);

// "GL_INVALID_ENUM" and the like for the seven codes that are reported, null for any other.
const char* glErrorName(unsigned int code);

// The part of a path after its last separator.
consteval const char* fileNameOf(const char* path) {
    const char* name = path;
    for (const char* c = path; *c; ++c)
        if (*c == '/' || *c == '\\')
            name = c + 1;
    return name;
}

} // namespace zentrak::display

// Makes the call, then checks it under its own source text, letter for letter:
//   GL_CALL(glDepthFunc(GL_LEQUAL));
#define GL_CALL(call)                                                                                        \
    do {                                                                                                     \
        call;                                                                                                \
        ::zentrak::display::GL_REPORT_ERROR(::zentrak::display::fileNameOf(__FILE__), __LINE__, #call);      \
    } while (false)

// Where no single call can be named: catches errors pending from earlier code.
#define GL_CHECK_STATUS()                                                                                    \
    ::zentrak::display::GL_REPORT_ERROR(::zentrak::display::fileNameOf(__FILE__), __LINE__, "Checking status")
