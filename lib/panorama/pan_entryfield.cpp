#include "pan_entryfield.h"

#include "dis_key.h"
#include "pan_alive.h"

namespace zentrak::panorama {

Control* EntryField::clone() {
    return new EntryField;
}

void EntryField::show(const std::string& value) {
    mShown = value;
    if (!mEditing)
        showAgain();
}

void EntryField::edit() {
    takeKeys();
    mEditing = true;
    select(0, getText().size());
}

void EntryField::finish() {
    if (!mEditing)
        return;
    mEditing = false;
    const std::string text = getText();
    leaveKeys();
    Alive alive(*this);
    if (const auto done = mOnDone; done && text != mShown) // a copy: it may delete this
        done(text);
    if (alive && !mEditing)
        showAgain();
}

void EntryField::showAgain() {
    setText(mShown);
    select(0, 0); // scrolled to its beginning
}

// The keys that end the entry.
bool EntryField::handleKey(const Event& event) {
    const auto finishAnd = [&](const std::function<void(int)>& then, int step) {
        Alive alive(*this);
        finish();
        if (const auto receiver = alive ? then : nullptr)
            receiver(step);
        return true;
    };
    switch (event.key) {
    case display::KEY_ESC:
        setText(mShown);
        return finishAnd(nullptr, 0);
    case display::KEY_ENTER:
    case display::KEY_KP_ENTER:
        return finishAnd(nullptr, 0);
    case display::KEY_TAB:
        return finishAnd(mOnTab, event.shift() ? -1 : 1);
    case display::KEY_UP:
    case display::KEY_DOWN:
        return mOnStep && finishAnd(mOnStep, event.key == display::KEY_UP ? 1 : -1);
    default:
        return false;
    }
}

int EntryField::handleEvent(Event& event) {
    if (event.type == "keydown" && mEditing && hasKeys() && handleKey(event))
        return 1;
    Alive alive(*this);
    const int result = TextInput::handleEvent(event);
    if (!alive)
        return result;
    if (hasKeys() && !mEditing)
        mEditing = mFirstPress = true;
    if (event.type == "mouseup" && mFirstPress) {
        mFirstPress = false;
        if (getAnchor() == getCaret())
            select(0, getText().size());
    }
    return result;
}

} // namespace zentrak::panorama
