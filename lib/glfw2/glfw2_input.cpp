#include "glfw2_input.h"

#include "glfw2.h"
#include "glfw2_keys.h"

#include <algorithm>
#include <utility>

namespace zentrak::glfw2 {

static_assert(Input::Codes == GLFW_KEY_LAST + 1);
static_assert(Input::Buttons == GLFW_MOUSE_BUTTON_LAST + 1);

namespace {

bool isIn(int index, int count) {
    return index >= 0 && index < count;
}

// Neither a control character nor outside Unicode.
bool isText(unsigned character) {
    return (character >= 32 && character <= 126) || (character >= 160 && character <= 0x10FFFF);
}

} // namespace

// Reports a press by its code. A code that is already down repeats, even if another key pressed it.
void Input::pressCode(InputEvents& events, int code) {
    const bool repeats = std::exchange(mCodes[size_t(code)], true);
    if (!repeats || mKeyRepeat)
        events.add(InputEvent::Key, code, GLFW_PRESS);
}

InputEvents Input::press(int key, int code) {
    InputEvents events;
    if (!isIn(key, Keys))
        return events;
    Down& down = mKeys[size_t(key)];
    mLast = key;
    mRepeating = down.down;
    if (!down.down)
        down = Down{true, isIn(code, Codes) ? code : GLFW_KEY_UNKNOWN, 0, {}};
    if (down.code != GLFW_KEY_UNKNOWN)
        pressCode(events, down.code);
    return events;
}

InputEvents Input::release(int key) {
    InputEvents events;
    if (!isIn(key, Keys) || !mKeys[size_t(key)].down)
        return events;
    Down& down = mKeys[size_t(key)];
    down.down = false;
    if (mLast == key)
        mLast = -1;
    if (down.code != GLFW_KEY_UNKNOWN && std::exchange(mCodes[size_t(down.code)], false))
        events.add(InputEvent::Key, down.code, GLFW_RELEASE);
    for (int i = 0; i < down.typed; ++i)
        events.add(InputEvent::Char, int(down.characters[size_t(i)]), GLFW_RELEASE);
    return events;
}

InputEvents Input::character(unsigned character) {
    InputEvents events;
    if (!isText(character))
        return events;
    const int code = int(character);
    if (mLast < 0) {
        events.add(InputEvent::Char, code, GLFW_PRESS);
        events.add(InputEvent::Char, code, GLFW_RELEASE);
        return events;
    }
    Down& down = mKeys[size_t(mLast)];
    if (down.code == GLFW_KEY_UNKNOWN && characterCode(character) != GLFW_KEY_UNKNOWN) {
        down.code = characterCode(character);
        pressCode(events, down.code);
    }
    if (mRepeating && !mKeyRepeat)
        return events;
    events.add(InputEvent::Char, code, GLFW_PRESS);
    auto* const end = down.characters.begin() + down.typed;
    if (std::find(down.characters.begin(), end, character) != end)
        return events;
    if (end == down.characters.end())
        events.add(InputEvent::Char, code, GLFW_RELEASE); // no room to remember it
    else
        down.characters[size_t(down.typed++)] = character;
    return events;
}

InputEvents Input::button(int button, bool down) {
    InputEvents events;
    if (!isIn(button, Buttons) || mButtons[size_t(button)] == down)
        return events;
    mButtons[size_t(button)] = down;
    events.add(InputEvent::Button, button, down ? GLFW_PRESS : GLFW_RELEASE);
    return events;
}

InputEvents Input::releaseAny() {
    // A key may be down without any event to report: continue with the next.
    for (int key = 0; key < Keys; ++key) {
        const InputEvents events = release(key);
        if (!events.empty())
            return events;
    }
    for (int index = 0; index < Buttons; ++index) {
        const InputEvents events = button(index, false);
        if (!events.empty())
            return events;
    }
    return {};
}

} // namespace zentrak::glfw2
