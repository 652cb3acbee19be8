// A field that keeps a value of the program: what is typed is handed over when the user is done.
#pragma once

#include "pan_textinput.h"

#include <functional>
#include <string>

namespace zentrak::panorama {

// Done is Return, Tab, or finish(), which the program calls after a click elsewhere; Esc brings the value
// back. The press that gives it the keys selects all of it, unless it is dragged.
class EntryField : public TextInput {
public:
    // Each may be empty, and may delete any control. The value is shown again after mOnDone unless that
    // shows another; it isn't called for a text that is the value.
    std::function<void(const std::string& text)> mOnDone;
    std::function<void(int step)> mOnTab;  // after mOnDone: 1 for Tab, -1 for Shift+Tab
    std::function<void(int step)> mOnStep; // after mOnDone: 1 for Up, -1 for Down; empty: they move the caret

    Control* clone() override; // a plain new one, owned by the caller

    // At once, or, while the user types, afterwards; the beginning of what is too long.
    void show(const std::string& value);

    void edit(); // takes the keys, with all of it selected
    void finish();
    bool isEditing() const { return mEditing; }

    int handleEvent(Event& event) override;

private:
    std::string mShown;
    bool mEditing = false;
    bool mFirstPress = false; // is held

    void showAgain();
    bool handleKey(const Event& event);
};

} // namespace zentrak::panorama
