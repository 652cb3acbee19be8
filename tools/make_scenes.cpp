// Makes the scenes of the show and of the tests.
//   make_scenes NAME FILE      NAME is face, cathedral, courtyard or stone

#include "command/command.h"
#include "scene/scenes.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

using namespace zentrak;

namespace {

struct Maker {
    const char* name;
    std::string (*make)();
};

const Maker makers[] = {
    {"face", scene::makeFace},
    {"cathedral", scene::makeCathedral},
    {"courtyard", scene::makeCourtyard},
    {"stone", scene::makeStone},
};

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && !command::isOption(argv[2]))
        for (const Maker& maker : makers) {
            if (strcmp(maker.name, argv[1]) != 0)
                continue;
            try {
                const std::string image = maker.make();
                return command::writeFile(argv[2], image.data(), image.size()) ? 0 : 1;
            } catch (const std::exception& exception) {
                fprintf(stderr, "make_scenes: %s\n", exception.what());
                return 1;
            }
        }
    fprintf(stderr, "usage: make_scenes face|cathedral|courtyard|stone FILE\n");
    return 2;
}
