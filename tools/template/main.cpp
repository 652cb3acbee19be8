// @NAME@: plays the demo in the current folder.

#include "effects.h"

#include <cstdio>
#include <exception>

int main() {
    try {
        zentrak::kindler::Kindler kindler;
        kindler.setup(); // reads setup.xml
        Effects effects(kindler);
        kindler.run();
    } catch (const std::exception& error) {
        fprintf(stderr, "@NAME@: %s\n", error.what());
        return 1;
    }
    return 0;
}
