// The nocturne, a second demo: plays the folder it is started in.

#include "effects.h"

#include <cstdio>
#include <exception>

int main() {
    try {
        zentrak::kindler::Kindler kindler;
        kindler.setup();
        nocturne::Effects effects(kindler);
        kindler.run();
    } catch (const std::exception& error) {
        fprintf(stderr, "nocturne: %s\n", error.what());
        return 1;
    }
    return 0;
}
