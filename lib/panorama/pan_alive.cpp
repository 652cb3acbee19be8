#include "pan_alive.h"

namespace zentrak::panorama {

Alive::Alive(Control& control) : mControl(&control), mNext(control.mAlive) {
    control.mAlive = this;
}

Alive::~Alive() {
    if (mControl)
        mControl->mAlive = mNext; // the last made goes first
}

} // namespace zentrak::panorama
