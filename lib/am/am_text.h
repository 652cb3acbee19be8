// Helpers for names and paths.
#pragma once

#include <string>

namespace zentrak::am {

// ASCII only, whatever the locale.
inline std::string toLower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return text;
}

inline bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

// A name with a zero byte would be cut there, and open another file.
inline bool isWholeName(const std::string& name) {
    return name.find('\0') == std::string::npos;
}

// The path up to and including its last "/"; empty without one.
inline std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// The path after its last "/".
inline std::string baseOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// The name after its last "."; `none` without one.
inline std::string extensionOf(const std::string& name, const std::string& none) {
    size_t dot = name.rfind('.');
    return dot == std::string::npos ? none : name.substr(dot + 1);
}

// Does the name stay in its folder? Not if it is absolute or contains "..".
inline bool staysInFolder(const std::string& name) {
    if (!isWholeName(name) || name.empty() || isSeparator(name[0]))
        return false;
    for (size_t start = 0, end = 0; end <= name.size(); ++end)
        if (end == name.size() || isSeparator(name[end])) {
            if (name.compare(start, end - start, "..") == 0)
                return false;
            start = end + 1;
        }
    return true;
}

} // namespace zentrak::am
