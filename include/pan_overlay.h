// What lies over everything and takes all input while it is open: a menu, a question, or a list of keys.
#pragma once

#include "pan_control.h"
#include "pan_paint.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::panorama {

struct MenuItem {
    std::string label; // empty: a line
    std::string key;   // that does the same
    std::function<void()> action;
    bool enabled = true;
};

struct DialogButton {
    std::string label;
    std::function<void()> action;
};

// A menu for many rows: it scrolls, and typing leaves the rows that match. For menus that open others, and
// those of a layout file, see Context.
//
// It fills the workspace, and is its last child. While it is open, whoever dispatches events passes them to
// it alone: all of them are its own. Its colours: `mBack` is the box (color), its outline (border), a row or
// button (highlight) and a button under the mouse (pushed); `mText` is text, that of the chosen row
// (highlight) and of a disabled one (inactive); `mCaption` is the title (color) and a key (inactive).
class Overlay : public Control {
public:
    static constexpr float ROW = 20; // pixels of a menu's row

    Overlay();
    Control* clone() override; // a plain new one, owned by the caller

    // A menu with its corner at a place, moved so that all of it shows. Typing leaves the rows that hold what
    // was typed; the title says so, and what is typed takes its place.
    void openMenu(mathbase::Vector2f place, std::vector<MenuItem> items, std::string title = "");
    // A question; Return takes the first button, Esc the last. Either closes one without buttons. An action
    // is called when all is closed, and may open another.
    void openDialog(std::string title, std::vector<std::string> lines, std::vector<DialogButton> buttons);
    // Columns of a key and what it does.
    void openHelp(std::vector<std::pair<std::string, std::string>> rows);
    bool isOpen() const { return mMode != Mode::NONE; }
    bool isDialog() const { return mMode == Mode::DIALOG; }
    const std::string& getTitle() const { return mTitle; }
    void close() { mMode = Mode::NONE; }

    // Where a row of the menu or a button of the question is; empty if it isn't shown.
    mathbase::Box2 getBox(const std::string& label) const;

    int handleEvent(Event& event) override;
    bool acceptEvents(Event& event) override;
    void draw() override;

private:
    enum class Mode { NONE, MENU, DIALOG, HELP };

    Mode mMode = Mode::NONE;
    mathbase::Vector2f mPlace;
    std::vector<MenuItem> mItems;
    std::vector<size_t> mShown; // items that match what was typed
    std::string mTyped;
    int mRow = -1;       // of mShown, under the mouse or chosen by keys
    size_t mFirst = 0;   // the first of mShown that is seen
    bool mFresh = false; // the button that opened it is still down
    std::string mTitle;
    std::vector<std::string> mLines;
    std::vector<DialogButton> mButtons;
    std::vector<std::pair<std::string, std::string>> mHelp;

    void filter();
    float getHeadHeight() const; // of the title, or of what was typed
    size_t getRows() const;      // that fit
    mathbase::Box2 getMenuBox() const;
    mathbase::Box2 getRowBox(size_t shown) const;
    mathbase::Box2 getDialogBox() const;
    mathbase::Box2 getButtonBox(size_t button) const;
    void choose(int row);
    void press(size_t button);
    void handleMenu(Event& event);
    void handleDialog(Event& event);
    void drawMenu(Paint& paint);
    void drawDialog(Paint& paint);
    void drawHelp(Paint& paint);
};

} // namespace zentrak::panorama
