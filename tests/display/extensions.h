// For tests of what happens without an extension.
#pragma once

#include <initializer_list>

namespace zentrak::test {

// While it lives, GLEW reports these extensions as missing (see extensions.cpp). One at a time.
class WithoutExtensions {
public:
    WithoutExtensions(std::initializer_list<const char*> names);
    ~WithoutExtensions();
    WithoutExtensions(const WithoutExtensions&) = delete;
    WithoutExtensions& operator=(const WithoutExtensions&) = delete;
};

} // namespace zentrak::test
