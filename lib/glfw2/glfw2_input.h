// Which keys and buttons are down, what they typed, and what callbacks are to be told of it. It calls nobody:
// each operation gives the events to tell, in order. Nothing here allocates.
#pragma once

#include <array>
#include <cstddef>

namespace zentrak::glfw2 {

struct InputEvent {
    enum Kind { Key, Char, Button };

    Kind kind;
    int code;   // of the key, the character or the button
    int action; // 1 press, 0 release
};

// The events of one operation; it holds what the longest of them gives.
class InputEvents {
public:
    void add(InputEvent::Kind kind, int code, int action) { mEvents[mCount++] = {kind, code, action}; }

    const InputEvent* begin() const { return mEvents.data(); }
    const InputEvent* end() const { return mEvents.data() + mCount; }
    bool empty() const { return mCount == 0; }

    static constexpr size_t Capacity = 10;

private:
    std::array<InputEvent, Capacity> mEvents{};
    size_t mCount = 0;
};

class Input {
public:
    static constexpr int Keys = 1024; // a key is a number below; the caller says which
    static constexpr int Codes = 319; // 0 to GLFW_KEY_LAST
    static constexpr int Buttons = 8;

    bool mKeyRepeat = false;  // a key held down sends further presses and characters
    bool mStickyKeys = false; // a key that was pressed reads so once, released or not

    // The key goes down, or repeats while it is down. Code -1: it is told by the character that it types, if
    // any.
    InputEvents press(int key, int code);
    // The key goes up: its own release, then that of each character it typed.
    InputEvents release(int key);
    // A character, typed by the key that went down or repeated last. With that key up it is released at once.
    InputEvents character(unsigned character);
    // A button goes down or up.
    InputEvents button(int button, bool down);
    // Releases one key or button that is down, as when the focus is lost; empty when none is.
    InputEvents releaseAny();

    bool down(int code);             // the state of a key by its code; reads a sticky one off
    void setStickyKeys(bool enable); // switched off, a key that only sticks is up

private:
    struct Down {
        bool down = false;
        int code = -1; // as it was when it went down, whatever the layout is now
        int typed = 0; // how many characters
        std::array<unsigned, 8> characters{};
    };
    enum class State : unsigned char { Up, Down, Sticking };

    void pressCode(InputEvents& events, int code);

    std::array<Down, Keys> mKeys{};
    std::array<State, Codes> mCodes{};
    std::array<bool, Buttons> mButtons{};
    int mLast = -1;          // the key that went down or repeated last
    bool mRepeating = false; // it repeated
};

} // namespace zentrak::glfw2
