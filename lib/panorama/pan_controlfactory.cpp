#include "pan_controlfactory.h"

namespace zentrak::panorama {

std::vector<Control*> ControlFactory::mControl;

namespace {

// Frees the prototypes when the program ends; made after their list, so it goes before it.
struct Prototypes {
    ~Prototypes() {
        for (Control* prototype : ControlFactory::mControl)
            delete prototype;
    }
} prototypes;

} // namespace

ControlFactory controlFactory;

void ControlFactory::addControlType(Control* prototype) {
    if (prototype)
        mControl.push_back(prototype);
}

Control* ControlFactory::create(std::string type) {
    for (Control* prototype : mControl)
        if (prototype->getType() == type)
            return prototype->clone();
    return nullptr;
}

} // namespace zentrak::panorama
