#include "command/command.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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
