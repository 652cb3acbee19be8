// Logging and the one exception type: what every library builds on.
#pragma once

#include <cstdarg>
#include <exception>

// The one log entry: formats, and hands a record to zentrak::ztk_log_callback. Nothing filters. A text is cut
// after 2047 characters.
void ztk_megasuperlogger(const char* level, const char* category, const char* file, int line,
                         const char* function, const char* format, ...) __attribute__((format(printf, 6, 7)));

// Logs from here: ZTK_LOG("info", "display", "closing display");
#define ZTK_LOG(level, category, ...)                                                                        \
    ztk_megasuperlogger(level, category, __FILE__, __LINE__, __func__, __VA_ARGS__)

// Aborts as assert does, under a text, a file and a line of its own.
#define ZTK_ASSERT_AT(condition, text, file, line)                                                           \
    ((condition) ? static_cast<void>(0) : ::zentrak::ztk_assert_failed(text, file, line, __func__))

namespace zentrak {

// One log line. The texts belong to the caller and live for the length of the call.
struct LogData {
    const char* level;    // "log", "info", "warning" or "error"
    const char* message;  // the formatted text
    const char* file;     // source file, as the call site gives it
    const char* function; // as the call site gives it
    const char* category; // subsystem: "app", "display", "o3d", "system", "Kindler"
    int         line;
};

// Prints "[level][function], message (file:line)" on standard output, the file without its folders and the
// function without a leading "zentrak::".
void ztk_log_callback(const LogData& data);

[[noreturn]] void ztk_assert_failed(const char* text, const char* file, int line, const char* function);

// What a caller can't repair. It logs itself when it is built. Its text is cut after 7999 characters.
class Exception : public std::exception {
public:
    explicit Exception(const char* format, ...) __attribute__((format(printf, 2, 3)));

    const char* what() const noexcept override; // lives as long as the exception

private:
    char mMessage[8000];
};

} // namespace zentrak
