#include "inputs.h"
#include "pan_overlay.h"

using namespace zentrak;
using namespace zentrak::panorama;
using namespace zentrak::display; // the keys
using mathbase::Box2;
using mathbase::Vector2f;

namespace {

// In a window of 800 by 600 pixels without a font: a menu is 120 wide.
class OverlayTest : public test::InputTest {
protected:
    Overlay* mOverlay = add<Overlay>(Box2(0, 0, 800, 600));
    std::vector<std::string> mChosen;

    MenuItem item(const std::string& label, bool enabled = true) {
        return {label, "", [this, label] { mChosen.push_back(label); }, enabled};
    }
    void openMenu(std::vector<std::string> labels) {
        std::vector<MenuItem> items;
        for (const std::string& label : labels)
            items.push_back(item(label));
        mOverlay->openMenu(Vector2f(100, 100), std::move(items));
    }
    DialogButton button(const std::string& label) {
        return {label, [this, label] { mChosen.push_back(label); }};
    }
    Vector2f middle(const std::string& label) const {
        const Box2 box = mOverlay->getBox(label);
        return Vector2f((box.x1 + box.x2) / 2, (box.y1 + box.y2) / 2);
    }
    // All input is the overlay's while it is open.
    void mouseAt(const char* type, Vector2f at, int which = 0) {
        panorama::Event event;
        event.type = type;
        event.mousePos = at;
        event.button = which;
        EXPECT_EQ(mOverlay->handleEvent(event), 1);
    }
    void keyAt(int code) {
        panorama::Event event;
        event.type = "keydown";
        event.key = code;
        EXPECT_EQ(mOverlay->handleEvent(event), 1);
    }
    void typeAt(const std::string& text) {
        for (const char c : text) {
            panorama::Event event;
            event.type = "keychardown";
            event.character = c;
            mOverlay->handleEvent(event);
        }
    }
};

} // namespace

TEST_F(OverlayTest, ARowIsChosenByAClickAndTheMenuIsClosedBefore) {
    openMenu({"one", "two", "three"});
    mOverlay->openMenu(Vector2f(100, 100), {item("one"), {"two", "", [this] {
                                                              EXPECT_FALSE(mOverlay->isOpen());
                                                              openMenu({"next"});
                                                          }}});
    const Vector2f two = middle("two");
    mouseAt("mousedown", two);
    mouseAt("mouseup", two);
    EXPECT_GT(mOverlay->getBox("next").getWidth(), 0) << "an action may open another";
    EXPECT_EQ(mOverlay->getBox("two").getWidth(), 0);
}

TEST_F(OverlayTest, ThePressThatOpenedItMayChooseByItsRelease) {
    openMenu({"one", "two"});
    mouseAt("mouseup", Vector2f(100, 100), 2); // of the right button, where the menu opened
    EXPECT_TRUE(mOverlay->isOpen());
    mouseAt("mousemove", middle("two"));
    mouseAt("mousedown", middle("two"), 2);
    mouseAt("mouseup", middle("two"), 2);
    EXPECT_EQ(mChosen, std::vector<std::string>{"two"});
}

TEST_F(OverlayTest, TypingLeavesTheRowsThatMatchAndReturnTakesTheFirst) {
    openMenu({"Grid", "Tunnel", "Waxon", "(group)"});
    typeAt("UN");
    EXPECT_GT(mOverlay->getBox("Tunnel").getWidth(), 0);
    EXPECT_EQ(mOverlay->getBox("Grid").getWidth(), 0);
    keyAt(KEY_BACKSPACE);
    keyAt(KEY_BACKSPACE);
    EXPECT_GT(mOverlay->getBox("Grid").getWidth(), 0);
    typeAt("g");
    keyAt(KEY_DOWN);
    keyAt(KEY_ENTER);
    EXPECT_EQ(mChosen, std::vector<std::string>{"(group)"});
}

TEST_F(OverlayTest, WhatIsDisabledAndALineAreNotChosen) {
    mOverlay->openMenu(Vector2f(0, 0), {item("off", false), {}, item("on")});
    keyAt(KEY_DOWN);
    keyAt(KEY_ENTER);
    keyAt(KEY_DOWN);
    keyAt(KEY_ENTER);
    EXPECT_TRUE(mOverlay->isOpen());
    keyAt(KEY_DOWN);
    keyAt(KEY_ENTER);
    EXPECT_EQ(mChosen, std::vector<std::string>{"on"});
}

TEST_F(OverlayTest, EscAndAPressElsewhereCloseIt) {
    openMenu({"one"});
    keyAt(KEY_ESC);
    EXPECT_FALSE(mOverlay->isOpen());
    openMenu({"one"});
    mouseAt("mousedown", Vector2f(700, 500));
    EXPECT_FALSE(mOverlay->isOpen());
    EXPECT_TRUE(mChosen.empty());
}

TEST_F(OverlayTest, AMenuTallerThanTheWindowScrollsWithTheChosenRow) {
    std::vector<std::string> labels;
    for (int i = 0; i < 100; ++i)
        labels.push_back("row " + std::to_string(i));
    openMenu(labels);
    EXPECT_GE(mOverlay->getBox("row 0").y1, 0) << "moved up, so that it shows";
    EXPECT_EQ(mOverlay->getBox("row 60").getWidth(), 0);
    for (int i = 0; i < 61; ++i)
        keyAt(KEY_DOWN);
    EXPECT_LE(mOverlay->getBox("row 60").y2, 600);
    EXPECT_GT(mOverlay->getBox("row 60").getWidth(), 0);
    keyAt(KEY_ENTER);
    EXPECT_EQ(mChosen, std::vector<std::string>{"row 60"});
}

TEST_F(OverlayTest, TheWheelScrollsATallMenuToItsEnds) {
    std::vector<std::string> labels;
    for (int i = 0; i < 100; ++i)
        labels.push_back("row " + std::to_string(i));
    openMenu(labels);
    const auto wheel = [&](float steps) {
        panorama::Event event;
        event.type = "mousewheel";
        event.mousePos = middle("row 5").x > 0 ? middle("row 5") : middle("row 95");
        event.wheelDelta = steps;
        EXPECT_EQ(mOverlay->handleEvent(event), 1);
    };
    wheel(-2);
    EXPECT_EQ(mOverlay->getBox("row 1").getWidth(), 0);
    EXPECT_GT(mOverlay->getBox("row 2").getWidth(), 0);
    wheel(-1000);
    EXPECT_GT(mOverlay->getBox("row 99").getWidth(), 0);
    keyAt(KEY_ENTER); // the row under the mouse
    EXPECT_EQ(mChosen.size(), 1u);
    openMenu(labels);
    wheel(-3);
    wheel(1000);
    EXPECT_GT(mOverlay->getBox("row 0").getWidth(), 0);
}

TEST_F(OverlayTest, OfAQuestionReturnIsTheFirstButtonAndEscTheLast) {
    const auto ask = [&] {
        mOverlay->openDialog("Save?", {"It has changes."}, {button("Save"), button("No")});
    };
    ask();
    EXPECT_TRUE(mOverlay->isDialog());
    mouseAt("mousedown", Vector2f(1, 1));
    EXPECT_TRUE(mOverlay->isOpen()) << "it has to be answered";
    keyAt(KEY_ENTER);
    ask();
    keyAt(KEY_ESC);
    ask();
    mouseAt("mouseup", middle("Save"));
    EXPECT_EQ(mChosen, (std::vector<std::string>{"Save", "No", "Save"}));
    mOverlay->openDialog("Nothing to choose", {}, {});
    keyAt(KEY_ESC);
    EXPECT_FALSE(mOverlay->isOpen());
}

TEST_F(OverlayTest, AnyKeyClosesTheHelp) {
    mOverlay->openHelp({{"F1", "this page"}});
    EXPECT_TRUE(mOverlay->isOpen());
    keyAt(KEY_SPACE);
    EXPECT_FALSE(mOverlay->isOpen());
}
