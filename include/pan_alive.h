// Whether a control still exists after a call: whoever receives an event or an action may delete it.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

// Lives on the stack around such a call; several for one control are destroyed in reverse order. A control
// that handles an event and then reads its own members needs one:
//
//     Alive     alive(*this);
//     const int result = Control::handleEvent(event);
//     if (!alive)
//         return result;
class Alive {
public:
    explicit Alive(Control& control);
    ~Alive();
    Alive(const Alive&) = delete;
    Alive& operator=(const Alive&) = delete;

    explicit operator bool() const { return mControl != nullptr; } // whether the control is still there

private:
    friend class Control;

    Control* mControl; // null once it is deleted
    Alive* mNext;
};

} // namespace zentrak::panorama
