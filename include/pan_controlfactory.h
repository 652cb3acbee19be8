// Makes controls by the names that layout files call them.
#pragma once

#include "pan_control.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::panorama {

class ControlFactory {
public:
    // One of each type, in order of registration: the first of a type is the one that counts. They stay until
    // the program ends.
    static std::vector<Control*> mControl;

    // Takes the prototype over. Ignores null.
    void addControlType(Control* prototype);

    // Registers a plain ControlType, unless its type is registered already.
    template <class ControlType>
    void addOnce() {
        auto prototype = std::make_unique<ControlType>();
        for (Control* known : mControl)
            if (known->getType() == prototype->getType())
                return;
        addControlType(prototype.release());
    }

    // A clone of the prototype of this type, owned by the caller; null if there is none.
    Control* create(std::string type);
};

extern ControlFactory controlFactory;

} // namespace zentrak::panorama
