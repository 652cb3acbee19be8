// Logging and failure for every library: the log entry point, its sink and the one exception class.
#pragma once

#include <exception>

#ifdef NDEBUG
#error "assertions are part of zentrak's behaviour: build without NDEBUG"
#endif

#if defined(__GNUC__)
#define ZTK_PRINTF_FORMAT(formatIndex, firstArgument)                                                        \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define ZTK_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

// Logs a printf-style text from here. Level: "log", "info", "warning" or "error"; category: a subsystem's
// word.
#define ZTK_LOG(level, category, ...)                                                                        \
    ztk_megasuperlogger(level, category, __FILE__, __LINE__, __func__, __VA_ARGS__)

// Formats as printf and hands the record to zentrak::ztk_log_callback. `file`, `line` and `function` name the
// call site. A text longer than 2047 bytes is cut. Main thread only: all calls share one buffer.
void ztk_megasuperlogger(const char* level, const char* category, const char* file, int line,
                         const char* function, const char* format, ...) ZTK_PRINTF_FORMAT(6, 7);

namespace zentrak {

// One log record. The texts belong to the caller and live as long as the call.
struct LogData {
    const char* level;    // "log", "info", "warning" or "error"
    const char* message;  // formatted
    const char* file;     // as the call site gives it, directories included
    const char* function; // as the call site gives it
    const char* category; // such as "app", "display", "o3d", "system" or "Kindler"
    int line;
};

// Prints "[level][function], message (file:line)" and a line end on standard output; the file without its
// directories, the function without a leading "zentrak::". Null texts print as empty ones.
void ztk_log_callback(const LogData& data);

// What is thrown where a caller can't repair. The message is a printf-style text, cut at 7999 bytes, and is
// logged as "error" as soon as the exception is built. The log line takes the finished message for a format
// once more: there "%%" shows as "%"; every other conversion has no argument left and shows as it is written.
class Exception : public std::exception {
public:
    explicit Exception(const char* format, ...) ZTK_PRINTF_FORMAT(2, 3);
    Exception(const Exception& other) = default;
    Exception& operator=(const Exception& other) = default;
    ~Exception() override;

    // The message; owned by the exception.
    const char* what() const noexcept override;

private:
    char mMessage[8000];
};

// For main(), once: has the heap keep what is freed, for the next frame. Software OpenGL asks for megabytes
// in each frame and frees them at its end; left alone, the C library hands them back and the kernel clears
// every page anew: up to a tenth of a frame.
void keepFreedMemory();

} // namespace zentrak
