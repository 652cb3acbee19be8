#include "command/command.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace zentrak::command {

bool isOption(const char* argument) {
    return argument[0] == '-';
}

bool hasOption(int argc, char** argv, int first) {
    for (int i = first; i < argc; ++i)
        if (isOption(argv[i]))
            return true;
    return false;
}

bool readArguments(int argc, char** argv, const char* program, const ReadOption& readOption, size_t most,
                   std::vector<std::string>& files) {
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (!isOption(argv[i])) {
            files.push_back(argument);
            continue;
        }
        const size_t split = argument.find('=');
        const bool hasValue = split != std::string::npos;
        bool good = false;
        try {
            good =
                readOption(argument.substr(0, split), hasValue ? argument.substr(split + 1) : "", hasValue);
        } catch (const std::exception& exception) {
            fprintf(stderr, "%s: %s\n", program, exception.what());
        }
        if (!good) {
            fprintf(stderr, "%s: unknown option or invalid value: %s\n", program, argv[i]);
            return false;
        }
    }
    return !files.empty() && files.size() <= most;
}

std::string format(const char* pattern, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, pattern);
    vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

bool readNumber(const char* argument, int least, int most, int& number) {
    char* end = nullptr;
    const long value = strtol(argument, &end, 10);
    if (*end || end == argument || value < least || value > most)
        return false;
    number = int(value);
    return true;
}

bool readFile(const std::string& path, std::string& bytes) {
    bytes.clear();
    FILE* const file = fopen(path.c_str(), "rb");
    if (file) {
        char part[65536];
        size_t count = 0;
        while ((count = fread(part, 1, sizeof part, file)) > 0)
            bytes.append(part, count);
    }
    const bool read = file && !ferror(file);
    if (!read)
        fprintf(stderr, "%s: can't be read: %s\n", path.c_str(), strerror(errno));
    if (file)
        fclose(file);
    return read;
}

bool writeFile(const std::string& path, const void* bytes, size_t count) {
    FILE* const file = fopen(path.c_str(), "wb");
    const bool accepted = file && fwrite(bytes, 1, count, file) == count;
    const bool written = file && fclose(file) == 0 && accepted;
    if (!written)
        fprintf(stderr, "%s: can't be written: %s\n", path.c_str(), strerror(errno));
    return written;
}

} // namespace zentrak::command
