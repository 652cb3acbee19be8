// zentrak-studio [FOLDER]: makes a show.

#include "studio_window.h"
#include "ztk_memory.h"
#include "ztk_system.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <unistd.h>

using namespace zentrak;
using namespace zentrak::studio;

namespace {

void work() {
    Show show;
    show.setup();
    const std::string folder = show.getScriptFolder();
    if (folder.empty())
        throw Exception("The script '%s' is in a zip file: it can't be edited there",
                        show.getScriptName().c_str());
    ScriptFile file(folder, show.getScriptName());
    Editor editor;
    try {
        editor.open(file.read().value_or(""));
    } catch (const Exception& exception) {
        throw Exception("%s: %s", file.getPath().c_str(), exception.what());
    }
    const char* const size = getenv("ZENTRAK_STUDIO_SIZE"); // as in "1920x1080"
    int width = 1280, height = 800;
    if (size && sscanf(size, "%dx%d", &width, &height) != 2)
        throw Exception("ZENTRAK_STUDIO_SIZE is a width and a height, as in 1920x1080, and not '%s'", size);
    show.open(std::max(width, 320), std::max(height, 240), "Zentrak studio");
    Window window(show, editor, file);
    show.getDisplay().updateBlocking();
}

} // namespace

int main(int argc, char** argv) {
    keepFreedMemory();
    if (argc > 2 || (argc == 2 && (!strcmp(argv[1], "-h") || !strcmp(argv[1], "--help")))) {
        puts("usage: zentrak-studio [FOLDER]     the folder of a show, with its setup.xml; without one the "
             "current folder");
        return argc > 2 ? 2 : 0;
    }
    if (argc == 2 && chdir(argv[1]) != 0) {
        fprintf(stderr, "zentrak-studio: '%s' is not a folder that can be entered\n", argv[1]);
        return 2;
    }
    try {
        work();
    } catch (const std::exception& exception) {
        fprintf(stderr, "zentrak-studio: %s\n", exception.what());
        return 1;
    }
    return 0;
}
