// Prints what a scene file holds, as a tree, and what a loader would skip or miss.
//   zentrak-show-scene FILE...
// Exits with 1 if there are remarks, with 2 if a file can't be read.

#include "command/command.h"
#include "scene/inspect.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    if (argc < 2 || zentrak::command::hasOption(argc, argv, 1)) {
        fprintf(stderr, "usage: zentrak-show-scene FILE...\n");
        return 2;
    }
    int status = 0;
    for (int i = 1; i < argc; ++i) {
        std::string bytes;
        if (!zentrak::command::readFile(argv[i], bytes)) {
            status = 2;
            continue;
        }
        const zentrak::scene::Inspection inspection = zentrak::scene::inspect(bytes);
        printf("%s: %s%d remark%s\n", argv[i], inspection.text.c_str(), inspection.remarks,
               inspection.remarks == 1 ? "" : "s");
        if (inspection.remarks > 0 && status == 0)
            status = 1;
    }
    return status;
}
