#include "ztk_system.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <malloc.h>

namespace {

const int logBufferSize = 2048;

char logBuffer[logBufferSize];

// printf into `buffer`, cut to `size` bytes with the closing 0. A format that can't be printed leaves what
// was written of it.
void formatBounded(char* buffer, size_t size, const char* format, va_list arguments) {
    buffer[0] = 0;
    vsnprintf(buffer, size, format ? format : "", arguments);
    buffer[size - 1] = 0;
}

// The last component of a path in either style.
const char* withoutDirectories(const char* file) {
    const char* name = file;
    for (const char* c = file; *c; ++c)
        if (*c == '\\' || *c == '/' || *c == ':')
            name = c + 1;
    return name;
}

const char* withoutNamespace(const char* function) {
    const char prefix[] = "zentrak::";
    const size_t length = sizeof(prefix) - 1;
    return strncmp(function, prefix, length) == 0 ? function + length : function;
}

const char* orEmpty(const char* text) {
    return text ? text : "";
}

// Where the conversion that starts at the "%" `c` ends, if it is one that only prints "%"; else null.
const char* endOfPercentConversion(const char* c) {
    ++c;
    c += strspn(c, "-+ #0'I");
    c += strspn(c, "0123456789");
    if (*c == '.') {
        ++c;
        c += strspn(c, "0123456789");
    }
    return *c == '%' ? c + 1 : nullptr;
}

// Reads `text` as a printf format that has no arguments, in place.
void printWithoutArguments(char* text) {
    char* out = text;
    for (const char* c = text; *c;) {
        const char* end = *c == '%' ? endOfPercentConversion(c) : nullptr;
        *out++ = *c++;
        if (end)
            c = end;
    }
    *out = 0;
}

} // namespace

void ztk_megasuperlogger(const char* level, const char* category, const char* file, int line,
                         const char* function, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    formatBounded(logBuffer, logBufferSize, format, arguments);
    va_end(arguments);
    zentrak::ztk_log_callback({level, logBuffer, file, function, category, line});
}

namespace zentrak {

void ztk_log_callback(const LogData& data) {
    printf("[%s][%s], %s (%s:%d)\n", orEmpty(data.level), withoutNamespace(orEmpty(data.function)),
           orEmpty(data.message), withoutDirectories(orEmpty(data.file)), data.line);
}

Exception::Exception(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    formatBounded(mMessage, sizeof(mMessage), format, arguments);
    va_end(arguments);

    char line[sizeof(mMessage)];
    memcpy(line, mMessage, sizeof(line));
    printWithoutArguments(line);
    ztk_megasuperlogger("error", "system", "ztk_system", 171, "Exception", "%s", line);
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    return mMessage;
}

void keepFreedMemory() {
    mallopt(M_MMAP_THRESHOLD,
            32 << 20); // what is larger still comes and goes by itself; the C library's most
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    mallopt(M_TOP_PAD, 16 << 20);
}

} // namespace zentrak
