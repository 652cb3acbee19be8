// A stranger's program against the installed headers and libraries: one from each floor.
#include "grid.h"
#include "kin_main.h"
#include "mb_vector3.h"
#include "script_engine.h"
#include "xml_parser.h"

#include <cassert>
#include <cstdio>

int main() {
    bool checked = false;
    assert((checked = true));
    if (!checked) {
        std::puts("assertions are off");
        return 1;
    }

    zentrak::xml::XmlParser parser;
    zentrak::script::ScriptEngine engine;
    zentrak::kindler::Kindler kindler;
    zentrak::kindler::Common common;
    zentrak::kindler::Grid grid(&common);
    return zentrak::mathbase::Vector3f(1, 2, 3).z == 3 ? 0 : 1;
}
