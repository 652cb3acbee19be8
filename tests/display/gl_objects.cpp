#include "gl_objects.h"

#include <dlfcn.h>

static std::map<unsigned, int> fakeLimits;

// Replaces the library's function, and forwards to it except for the faked limits.
extern "C" void glGetIntegerv(GLenum name, GLint* value) {
    using Function = void (*)(GLenum, GLint*);
    static const Function real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "glGetIntegerv"));
    if (const auto fake = fakeLimits.find(name); fake != fakeLimits.end())
        *value = fake->second;
    else
        real(name, value);
}

namespace zentrak::test {

FakeLimits::FakeLimits(std::initializer_list<std::pair<const unsigned, int>> limits) {
    fakeLimits = limits;
}

FakeLimits::~FakeLimits() {
    fakeLimits.clear();
}

} // namespace zentrak::test
