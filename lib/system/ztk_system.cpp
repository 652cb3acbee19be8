#include "ztk_system.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The part of a path behind its last separator, in either path style.
const char* lastComponent(const char* path) {
    for (const char* c = path + strlen(path); c != path; --c) {
        if (c[-1] == '\\' || c[-1] == '/' || c[-1] == ':') {
            return c;
        }
    }
    return path;
}

const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

void ztk_megasuperlogger(const char* level, const char* category, const char* file, int line,
                         const char* function, const char* format, ...) {
    static char buffer[2048];
    va_list     arguments;
    va_start(arguments, format);
    if (vsnprintf(buffer, sizeof buffer, format, arguments) < 0) {
        buffer[0] = 0;
    }
    va_end(arguments);
    buffer[sizeof buffer - 1] = 0;

    zentrak::LogData data;
    data.level = level;
    data.message = buffer;
    data.file = file;
    data.function = function;
    data.category = category;
    data.line = line;
    zentrak::ztk_log_callback(data);
}

namespace zentrak {

void ztk_log_callback(const LogData& data) {
    static const char prefix[] = "zentrak::";
    const char*       file = lastComponent(orEmpty(data.file));
    const char*       function = orEmpty(data.function);
    if (strncmp(function, prefix, sizeof prefix - 1) == 0) {
        function += sizeof prefix - 1;
    }
    printf("[%s][%s], %s (%s:%d)\n", orEmpty(data.level), function, orEmpty(data.message), file, data.line);
}

void ztk_assert_failed(const char* text, const char* file, int line, const char* function) {
    fflush(stdout);
    fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function, text);
    abort();
}

Exception::Exception(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (vsnprintf(mMessage, sizeof mMessage, format, arguments) < 0) {
        mMessage[0] = 0;
    }
    va_end(arguments);

    // The log takes the finished text for a format once more, and there are no arguments to it: "%%" becomes
    // "%", and a conversion, having nothing to convert, stays as it is written.
    char   text[sizeof mMessage];
    size_t length = 0;
    for (const char* c = mMessage; *c != 0; ++c) {
        text[length++] = *c;
        if (c[0] == '%' && c[1] == '%') {
            ++c;
        }
    }
    text[length] = 0;
    ztk_megasuperlogger("error", "system", "ztk_system", 171, "Exception", "%s", text);
}

const char* Exception::what() const noexcept {
    return mMessage;
}

} // namespace zentrak
