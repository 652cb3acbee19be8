// Logging and failure for every library: the log entry point, its sink and the one exception class.
#pragma once

#include <exception>
#include <string>

#ifdef NDEBUG
#error "assertions are part of zentrak's behaviour: build without NDEBUG"
#endif

#if defined(__GNUC__)
#define ZTK_PRINTF_FORMAT(formatIndex, firstArgument)                                                        \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define ZTK_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

// Logs a printf-style text with the call site. Level: "log", "info", "warning" or "error"; category: a
// subsystem's word.
#define ZTK_LOG(level, category, ...)                                                                        \
    ztk_megasuperlogger(level, category, __FILE__, __LINE__, __func__, __VA_ARGS__)

// Formats as printf does and hands the record to zentrak::ztk_log_callback. `file`, `line` and `function`
// name the call site. Texts longer than 2047 bytes are cut. Main thread only: all calls share one buffer.
void ztk_megasuperlogger(const char* level, const char* category, const char* file, int line,
                         const char* function, const char* format, ...) ZTK_PRINTF_FORMAT(6, 7);

namespace zentrak {

// One log record. The texts belong to the caller and are valid during the call only.
struct LogData {
    const char* level;    // "log", "info", "warning" or "error"
    const char* message;  // formatted
    const char* file;     // as given by the call site, directories included
    const char* function; // as given by the call site
    const char* category; // such as "app", "display", "o3d", "system" or "Kindler"
    int line;
};

// Prints "[level][function], message (file:line)" and a newline on standard output; the file without its
// directories, the function without a leading "zentrak::". Null texts print as empty ones.
void ztk_log_callback(const LogData& data);

// printf for texts that come from files. On a terminal every control character but newline and tab is shown
// as "?", so that no file can drive the terminal; elsewhere the bytes are printed as they are.
void ztk_print(const char* format, ...) ZTK_PRINTF_FORMAT(1, 2);

// Thrown where a caller can't recover. The message is a printf-style text, cut at 7999 bytes, and is logged
// as "error" when the exception is built. The log line treats the finished message as a format once more:
// "%%" shows as "%"; any other conversion has no argument left and shows as it is written.
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

// Returns what `read` returns, which reads the file `name`. If it throws, a log line names the file before
// the exception goes on to the caller.
template <typename Read>
auto readNamed(const std::string& name, Read read) {
    try {
        return read();
    } catch (...) {
        ZTK_LOG("error", "system", "The file '%s' can't be read", name.c_str());
        throw;
    }
}

} // namespace zentrak
