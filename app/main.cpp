// The show: the driver and the effects.

#include "effect_names.h"
#include "kin_main.h"
#include "ztk_memory.h"
#include "ztk_system.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

// Destroys the effects in the reverse order of their making.
struct Effects {
    std::vector<std::unique_ptr<Effect>> list;

    ~Effects() {
        while (!list.empty())
            list.pop_back();
    }
};

// The effects come after the driver, so that they are destroyed while its window is still open.
void show() {
    Kindler kindler;
    kindler.setup();

    Common common;
    Effects effects;
    for (const CatalogueEntry& entry : effectCatalogue()) {
        effects.list.push_back(entry.make(common));
        kindler.addCallback(entry.name, *effects.list.back());
    }
    kindler.run();
}

} // namespace

int main() {
    setvbuf(stdout, nullptr, _IOLBF, 0); // a log in a file is complete however the program ends
    zentrak::keepFreedMemory();
    try {
        show();
    } catch (std::exception& e) {
        zentrak::ztk_print("error: %s\n", e.what());
    }
    return 0;
}
