// zentrak-studio [FOLDER [SCRIPT]]: makes a show.

#include "studio_window.h"
#include "ztk_memory.h"
#include "ztk_process.h"
#include "ztk_system.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <unistd.h>

using namespace zentrak;
using namespace zentrak::studio;

namespace {

// Which of the scripts is edited: the one of this name, or else the last.
size_t findScript(const Show& show, const char* name) {
    const std::vector<std::string>& scripts = show.getScripts();
    if (!name)
        return scripts.size() - 1;
    const auto found = std::find(scripts.begin(), scripts.end(), name);
    if (found == scripts.end())
        throw Exception("The setup file names no script '%s'", name);
    return size_t(found - scripts.begin());
}

void work(const char* script) {
    Show show;
    show.setup();
    show.edit(findScript(show, script));
    if (show.getScriptFolder().empty())
        throw Exception("The script '%s' is in a zip file: it can't be edited there",
                        show.getScripts()[show.getEdited()].c_str());
    const char* const size = getenv("ZENTRAK_STUDIO_SIZE"); // as in "1920x1080"
    int width = 1280, height = 800;
    if (size && sscanf(size, "%dx%d", &width, &height) != 2)
        throw Exception("ZENTRAK_STUDIO_SIZE is a width and a height, as in 1920x1080, and not '%s'", size);
    show.open(std::max(width, 320), std::max(height, 240), "Zentrak studio");
    Editor editor;
    Window window(show, editor);
    while (window.step()) {
    }
}

} // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IOLBF, 0); // so that a redirected log is complete however the program ends
    keepFreedMemory();
    boundProcess();
    const bool help = argc > 1 && (!strcmp(argv[1], "-h") || !strcmp(argv[1], "--help"));
    if (argc > 3 || help) {
        puts("usage: zentrak-studio [FOLDER [SCRIPT]]\n"
             "FOLDER is that of a show, with its setup.xml; without it the current folder.\n"
             "SCRIPT is one of those that the setup file names; without it the last one.");
        return help ? 0 : 2;
    }
    if (argc > 1 && chdir(argv[1]) != 0) {
        fprintf(stderr, "zentrak-studio: can't enter the folder '%s'\n", argv[1]);
        return 2;
    }
    try {
        work(argc > 2 ? argv[2] : nullptr);
    } catch (const std::exception& exception) {
        fprintf(stderr, "zentrak-studio: %s\n", exception.what());
        return 1;
    }
    return 0;
}
