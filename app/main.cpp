// The show: the driver, the effects and their names.

#include "clear.h"
#include "grid.h"
#include "kin_main.h"

#include <cstdio>
#include <exception>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

/*
 * Driver first, effects after it: they end in the reverse order, while the window is still open.
 */
void show() {
    Kindler kindler;
    kindler.setup();

    Common common;
    Clear  clear;
    clear.color1 = mathbase::Vector4f(0.051f, 0.051f, 0.051f, 0);
    clear.color2 = mathbase::Vector4f(0, 0, 0, 0);
    clear.type = "gradient";
    Grid grid(&common);

    kindler.addCallback("clear", clear);
    kindler.addCallback("grid", grid);

    kindler.run();
}

} // namespace

int main() {
    try {
        show();
    } catch (std::exception& e) {
        printf("error: %s\n", e.what());
    }
    return 0;
}
