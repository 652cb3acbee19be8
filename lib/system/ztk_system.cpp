#include "ztk_system.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

char logBuffer[2048];

// printf into `buffer`, truncated to `size` bytes including the terminating 0. If printing fails, keeps what
// was written so far.
void formatBounded(char* buffer, size_t size, const char* format, va_list arguments) {
    buffer[0] = 0;
    vsnprintf(buffer, size, format ? format : "", arguments);
    buffer[size - 1] = 0;
}

// The last component of a path with either kind of separator.
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

// If the conversion at the "%" `c` prints just "%", its end; otherwise null.
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

// Formats `text` in place like printf with no arguments.
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

// Control characters in UTF-8: below 32, 127, and the two-byte codes from 0x80 to 0x9F.
void maskControlCharacters(std::string& text) {
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if ((byte < 32 && byte != '\n' && byte != '\t') || byte == 127)
            text[i] = '?';
        else if (byte == 0xC2 && next >= 0x80 && next <= 0x9F)
            text.replace(i, 2, "?");
    }
}

void printMasked(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0)
        return;
    std::string text(size_t(length) + 1, 0);
    vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    maskControlCharacters(text);
    fputs(text.c_str(), stdout);
}

} // namespace

void ztk_megasuperlogger(const char* level, const char* category, const char* file, int line,
                         const char* function, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    formatBounded(logBuffer, sizeof(logBuffer), format, arguments);
    va_end(arguments);
    zentrak::ztk_log_callback({level, logBuffer, file, function, category, line});
}

namespace zentrak {

void ztk_log_callback(const LogData& data) {
    ztk_print("[%s][%s], %s (%s:%d)\n", orEmpty(data.level), withoutNamespace(orEmpty(data.function)),
              orEmpty(data.message), withoutDirectories(orEmpty(data.file)), data.line);
}

void ztk_print(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (isatty(STDOUT_FILENO))
        printMasked(format, arguments);
    else
        vprintf(format, arguments);
    va_end(arguments);
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

} // namespace zentrak
