// A column of options, one of which is chosen.
#pragma once

#include "pan_inputcontrol.h"
#include "pan_textline.h"

#include <string>
#include <vector>

namespace zentrak::panorama {

// A press and a release on the same option chooses it; a release anywhere else cancels. With the keys, Up and
// Down go to the next option. Each change by the user sends action 8.
class RadioButton : public InputControl {
public:
    static constexpr float ROW = 18.0f; // height of an option, and of the heading, pixels
    static constexpr float BOX = 13.0f; // side of the mark, pixels

    struct BoxData {
        TextLine name;
        bool checked = false;
    };

    std::vector<BoxData> mBoxes;
    int mHoverBox = -1;  // under the mouse, or -1
    int mPushedBox = -1; // where the press began, or -1
    int mCursor = 0;     // where the keys are

    RadioButton();

    Control* clone() override; // a plain new one without options, owned by the caller

    // "name", a heading over the options; each "option" with "name" and "checked" ("true"; the last one of
    // several wins). Options replace those that were loaded before, as from a style.
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override; // 1 for what it takes
    void draw() override;

    void addOption(const std::string& name, bool checked);
    int getOptionCount() const { return int(mBoxes.size()); }

    // Out of range: an empty text, false, and nothing set. These send nothing.
    std::string getOption(int index) const;
    bool getChecked(int index) const;
    virtual void setChecked(int index, bool checked); // checking one unchecks the others
    int getSelected() const;                          // the first that is checked, or -1

protected:
    virtual void choose(int index);     // by the user: sets, and sends action 8 if that is a change
    virtual bool moveCursor(int index); // by the keys
    virtual void drawMark(Render& render, const mathbase::Box2& box, const BoxData& data, bool hover,
                          bool pushed);

    const std::string& heading() const { return mCaptionText; }
    bool has(int index) const { return index >= 0 && index < int(mBoxes.size()); }

private:
    void onCaptureLost() override;
    mathbase::Box2 getRow(int index) const; // in window coordinates
    int rowAt(const mathbase::Vector2f& place) const;
    bool takesKey(const Event& event);

    TextLine mHeading;
};

} // namespace zentrak::panorama
