// Whether a control has outlived what it called: whoever hears an event or an action may delete it.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

// Lives on the stack of one of the control's own operations.
//
//     Alive alive(*this);
//     sendAction(...);
//     if (!alive) return;
class Alive {
public:
    explicit Alive(Control& control);
    ~Alive();
    Alive(const Alive&) = delete;
    Alive& operator=(const Alive&) = delete;

    explicit operator bool() const { return mControl != nullptr; }

private:
    friend class Control;

    Control* mControl; // null once it is deleted
    Alive*   mNext;
};

} // namespace zentrak::panorama
