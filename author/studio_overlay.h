// What lies over everything and takes all input while it is there: a menu, a question, or the help.
#pragma once

#include "pan_control.h"
#include "studio_paint.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::studio {

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

class Overlay : public panorama::Control {
public:
    static constexpr float ROW = 20; // pixels of a menu's row

    Overlay();
    panorama::Control* clone() override; // a plain new one, owned by the caller

    // A menu with its corner at a place, moved so that all of it shows. Typing leaves the rows that hold what
    // was typed; the title says so, and what is typed takes its place.
    void openMenu(Vector2f place, std::vector<MenuItem> items, std::string title = "");
    // A question; Return takes the first button, Esc the last.
    void openDialog(std::string title, std::vector<std::string> lines, std::vector<DialogButton> buttons);
    // Columns of a key and what it does.
    void openHelp(std::vector<std::pair<std::string, std::string>> rows);
    bool isOpen() const { return mMode != Mode::NONE; }
    bool isDialog() const { return mMode == Mode::DIALOG; }
    const std::string& getTitle() const { return mTitle; }
    void close() { mMode = Mode::NONE; }

    // Where a row of the menu or a button of the question is; empty without. For tests too.
    Box2 getBox(const std::string& label) const;

    int handleEvent(panorama::Event& event) override;
    bool acceptEvents(panorama::Event& event) override;
    void draw() override;

private:
    enum class Mode { NONE, MENU, DIALOG, HELP };

    Mode mMode = Mode::NONE;
    Vector2f mPlace;
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
    Box2 getMenuBox() const;
    Box2 getRowBox(size_t shown) const;
    Box2 getDialogBox() const;
    Box2 getButtonBox(size_t button) const;
    void choose(int row);
    void press(size_t button);
    void handleMenu(panorama::Event& event);
    void handleDialog(panorama::Event& event);
    void drawMenu(Paint& paint);
    void drawDialog(Paint& paint);
    void drawHelp(Paint& paint);
};

} // namespace zentrak::studio
