#include "extensions.h"

#include <GL/glew.h>
#include <algorithm>
#include <dlfcn.h>
#include <sstream>
#include <string>
#include <vector>

static std::vector<std::string> missing;

// Replaces GLEW's own function, and forwards to it unless one of the names is reported as missing.
extern "C" GLboolean glewIsSupported(const char* names) {
    using Function = GLboolean (*)(const char*);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "glewIsSupported"));
    std::istringstream list(names);
    for (std::string name; list >> name;)
        if (std::find(missing.begin(), missing.end(), name) != missing.end())
            return GL_FALSE;
    return real(names);
}

namespace zentrak::test {

WithoutExtensions::WithoutExtensions(std::initializer_list<const char*> names) {
    missing.assign(names.begin(), names.end());
}

WithoutExtensions::~WithoutExtensions() {
    missing.clear();
}

} // namespace zentrak::test
