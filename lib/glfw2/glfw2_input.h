// Tracks which keys and buttons are down and what they typed, and derives the events of each change. It makes
// no callbacks: each operation returns the events to report, in order. Nothing allocates.
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

// The events of one operation, with room for the largest number that one returns.
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
    static constexpr int Keys = 1024; // the caller numbers the keys
    static constexpr int Codes = 319; // 0 to GLFW_KEY_LAST
    static constexpr int Buttons = 8;

    bool mKeyRepeat = false; // a key held down sends further presses and characters

    // The key goes down, or repeats if it is down. With code -1 it takes the code of the character that it
    // types, if any.
    InputEvents press(int key, int code);
    // The key goes up: its own release, then that of each character it typed.
    InputEvents release(int key);
    // A character typed by the key that last went down or repeated. If that key is up, it is released
    // immediately.
    InputEvents character(unsigned character);
    InputEvents button(int button, bool down);
    // Releases one key or button that is down; returns nothing if none is.
    InputEvents releaseAny();

private:
    struct Down {
        bool down = false;
        int code = -1; // as when it went down, whatever the layout is now
        int typed = 0; // how many characters
        std::array<unsigned, 8> characters{};
    };

    void pressCode(InputEvents& events, int code);

    std::array<Down, Keys> mKeys{};
    std::array<bool, Codes> mCodes{}; // whether a key with this code is down
    std::array<bool, Buttons> mButtons{};
    int mLast = -1;          // the key that went down or repeated last
    bool mRepeating = false; // mLast has repeated
};

} // namespace zentrak::glfw2
