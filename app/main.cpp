// The show: the driver and the effects.

#include "effect_names.h"
#include "kin_main.h"
#include "ztk_memory.h"
#include "ztk_process.h"
#include "ztk_system.h"

#include <cstdio>
#include <exception>
#include <new>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

// Declared after the driver, so that the effects are destroyed while its window is still open.
void show() {
    Kindler kindler;
    kindler.setup();

    Common common;
    EffectSet effects(common);
    effects.forEach([&](const char* name, Effect& effect) { kindler.addCallback(name, effect); });
    kindler.run();
}

} // namespace

int main() {
    setvbuf(stdout, nullptr, _IOLBF, 0); // so that a redirected log is complete however the program ends
    keepFreedMemory();
    boundProcess();
    try {
        show();
    } catch (std::exception& e) {
        if (dynamic_cast<std::bad_alloc*>(&e))
            ZTK_LOG("error", "app", "Out of memory: the program may have %ld MB", getMemoryBound() >> 20);
        ztk_print("error: %s\n", e.what());
    }
    return 0;
}
