// Every type of control on a real window: at rest, and in each state that the mouse and keys can cause.
#include "gl_fixture.h"
#include "input.h"
#include "pan_button.h"
#include "pan_checkbox.h"
#include "pan_context.h"
#include "pan_controlfactory.h"
#include "pan_dropdown.h"
#include "pan_panorama.h"
#include "pan_slider.h"
#include "pan_stat.h"
#include "pan_textinput.h"
#include "pan_treeview.h"
#include "support.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;
using test::Picture;

namespace {

constexpr int WIDTH = 1000, HEIGHT = 700;

// Pieces of pictures in rows, each with the state that it shows.
class Sheet {
public:
    void add(const Picture& from, const Box2& box) {
        const int x = std::max(0, int(box.x1)), y = std::max(0, int(box.y1));
        Picture piece(std::min(int(box.x2), from.width) - x, std::min(int(box.y2), from.height) - y);
        for (int row = 0; row < piece.height; ++row)
            std::memcpy(piece.at(0, row), from.at(x, y + row), size_t(piece.width) * 4);
        mRows.back().push_back(std::move(piece));
    }
    void newRow() { mRows.emplace_back(); }

    Picture picture() const {
        Picture all(GAP, GAP);
        for (const auto& row : mRows) {
            int width = GAP, height = 0;
            for (const Picture& piece : row) {
                width += piece.width + GAP;
                height = std::max(height, piece.height);
            }
            all.width = std::max(all.width, width);
            all.height += height + GAP;
        }
        all.rgba.assign(size_t(all.width) * size_t(all.height) * 4, 0x30);
        for (size_t i = 3; i < all.rgba.size(); i += 4)
            all.rgba[i] = 255;
        int y = GAP;
        for (const auto& row : mRows) {
            int x = GAP, height = 0;
            for (const Picture& piece : row) {
                for (int i = 0; i < piece.height; ++i)
                    std::memcpy(all.at(x, y + i), piece.at(0, i), size_t(piece.width) * 4);
                x += piece.width + GAP;
                height = std::max(height, piece.height);
            }
            y += height + GAP;
        }
        return all;
    }

private:
    static constexpr int GAP = 8;

    std::vector<std::vector<Picture>> mRows{1};
};

class Gallery : public ::testing::Test, protected Callback {
protected:
    test::GlWindow mWindow;
    std::unique_ptr<Panorama> mPanorama;
    test::Viewer mViewer;
    std::vector<std::string> mActions; // name and number

    Gallery() : mWindow(WIDTH, HEIGHT), mViewer("test", [this] { mWindow.display().update(); }) {
        // Time stands still, so that carets don't blink.
        mWindow.display().setFps(display::DisplayGL::FPS_DELTA, 1e6f);
        mWindow.archives().addArchive(test::sourcePath("tests/data/panorama"));
        mPanorama.reset(new Panorama(&mWindow.display()));
        mPanorama->load("gallery.xml");
        mPanorama->mWorkspace.setCallback(this);
        mViewer.focus();
        fill();
    }

    void controlAction(Control* control, Action action) override {
        mActions.push_back(control->getName() + " " + std::to_string(action));
    }

    // What a layout can't express.
    void fill() {
        for (const char* name : {"greybutton", "greyslider", "greychoice"})
            find<Control>(name)->setInactive(true);
        for (int i = 0; i < 150; ++i) {
            const float t = float(i) * 0.08f;
            find<Stat>("rate")->addValue(52.0f + 8.0f * std::sin(t) * std::cos(t * 0.37f) -
                                         (i % 40 == 20 ? 30.0f : 0.0f));
            find<Stat>("signed")->addValue(0.8f * std::sin(t * 1.7f));
        }
    }

    template <class Type>
    Type* find(const std::string& name) {
        Type* control = dynamic_cast<Type*>(mPanorama->mWorkspace.findControl(name));
        if (!control)
            throw std::runtime_error("no control " + name);
        return control;
    }

    Picture frame() {
        return mWindow.frame([this] {
            glClearColor(0.16f, 0.22f, 0.26f, 1.0f);
            glClear(GL_COLOR_BUFFER_BIT);
            mPanorama->onDraw();
        });
    }

    // The mouse, in pixels of the window or from the corner of a control.
    void moveTo(float x, float y) {
        mViewer.moveTo(int(x), int(y));
        mViewer.until("the mouse is there", [&] {
            const Vector2f at = mWindow.display().getMousePosition();
            return int(at.x) == int(x) && int(at.y) == int(y);
        });
    }
    void moveTo(const std::string& name, float x, float y) {
        const Box2 world = find<Control>(name)->getAreaWorld();
        moveTo(world.x1 + x, world.y1 + y);
    }
    void moveAway() { moveTo(515, 690); }
    void until(const std::string& what, const std::function<bool()>& done) { mViewer.until(what, done); }
    void clickAt(const std::string& name, float x, float y) {
        moveTo(name, x, y);
        mViewer.click(1);
        settle();
    }
    // A key that nothing uses: once it arrives, so has everything sent before it.
    void settle() {
        struct Last : display::Listener {
            bool through = false;
            int onKeyUp(const display::KeyEvent& event) override {
                through |= event.key == display::KEY_F12;
                return 0;
            }
        } last;
        last.attachToDisplay(&mWindow.display());
        mViewer.key("F12");
        until("the last key", [&] { return last.through; });
    }
};

} // namespace

TEST_F(Gallery, HoldsEveryTypeThatIsRegistered) {
    const std::string layout = test::readFile(test::sourcePath("tests/data/panorama/gallery.xml"));
    std::string types;
    for (Control* prototype : ControlFactory::mControl) {
        const std::string type = prototype->getType();
        if (types.find(type + " ") == std::string::npos)
            types += type + " ";
        EXPECT_NE(layout.find("<" + type), std::string::npos) << type;
    }
    EXPECT_EQ(
        types,
        "button checkbox dropdown flow frame image label layoutstack menubar panel radiobutton scrollbar "
        "slider spline splineorg stat tabframe tabview textinput treeview window workspace ");
}

TEST_F(Gallery, AtRest) {
    moveAway();
    EXPECT_TRUE(test::matchesReference("panorama_gallery", frame()));
}

TEST_F(Gallery, ARealMousePushesDragsAndChooses) {
    typedef std::vector<std::string> Actions;
    const auto take = [&] {
        settle();
        return std::exchange(mActions, Actions());
    };

    clickAt("plain", 20, 10);
    EXPECT_EQ(take(), Actions({"plain 0", "plain 1"}));
    moveTo("plain", 20, 10);
    mViewer.buttonDown(1);
    moveTo("plain", 20, 60);
    mViewer.buttonUp(1);
    EXPECT_EQ(take(), Actions({"plain 0"}));
    clickAt("toggle", 20, 10);
    clickAt("toggle", 20, 10);
    EXPECT_EQ(take(), Actions({"toggle 0", "toggle 1"}));
    clickAt("greybutton", 20, 10);
    EXPECT_EQ(take(), Actions());

    clickAt("radio", 20, 27);
    EXPECT_EQ(find<RadioButton>("radio")->getSelected(), 0);
    clickAt("check", 20, 45);
    EXPECT_TRUE(find<Checkbox>("check")->getChecked(1));
    EXPECT_EQ(take(), Actions({"radio 8", "check 8"}));

    Slider* slider = find<Slider>("across"); // 165 pixels long
    clickAt("across", 150, 8);
    EXPECT_FLOAT_EQ(slider->getValue(), 0.5f);
    EXPECT_EQ(take(), Actions({"across 8"}));
    until("the handle is there", [&] { return slider->mPosition.get(false) == slider->mPosition.get(true); });
    moveTo("across", 82, 8);
    mViewer.buttonDown(1);
    moveTo("across", 33, 300);
    EXPECT_FLOAT_EQ(slider->getValue(), 0.2f);
    moveTo("across", 500, 300);
    EXPECT_EQ(slider->getValue(), 1.0f);
    mViewer.buttonUp(1);
    moveTo("across", 100, 8);
    take();
    mViewer.wheel(-3);
    settle();
    EXPECT_FLOAT_EQ(slider->getValue(), 0.7f);

    Dropdown* choice = find<Dropdown>("choice");
    take();
    clickAt("choice", 20, 10);
    clickAt("choice", 20, 65); // the third row
    EXPECT_EQ(choice->getSelectedId(), "3");
    clickAt("choice", 20, 10);
    clickAt("plain", 20, 10); // which only closes the list
    EXPECT_EQ(take(), Actions({"choice 8"}));
    EXPECT_EQ(mPanorama->mWorkspace.mContext, nullptr);

    TreeView* tree = find<TreeView>("tree");
    clickAt("tree", 9, 28);
    EXPECT_EQ(tree->getRowCount(), 7);
    clickAt("tree", 80, 64);
    EXPECT_EQ(tree->getItem(tree->getSelected())->id, "choir");
    EXPECT_EQ(take(), Actions({"tree 8"}));
}

TEST_F(Gallery, RealKeysEdit) {
    TextInput* text = find<TextInput>("text");
    clickAt("text", 60, 10);
    mViewer.type(" q");
    settle(); // key codes are translated when the window handles them, by the layout at that time
    mViewer.layout("de");
    mViewer.key("adiaeresis");
    settle();
    mViewer.layout("us");
    EXPECT_EQ(text->getText(), "Text q\xe4");
    mViewer.key("ctrl+Left");
    mViewer.key("shift+Home");
    mViewer.key("ctrl+x");
    settle();
    EXPECT_EQ(text->getText(), "q\xe4");
    EXPECT_EQ(TextInput::getClipboard(), "Text ");
    mViewer.key("End");
    mViewer.key("ctrl+v");
    mViewer.key("BackSpace");
    mViewer.key("Home");
    mViewer.key("Delete");
    settle();
    EXPECT_EQ(text->getText(), "\xe4Text");

    mViewer.keyDown("x"); // held: it repeats
    until("it repeats", [&] { return text->getText().size() >= 8; });
    mViewer.keyUp("x");
    settle();
    EXPECT_EQ(text->getText().substr(0, 3), "xxx");

    TextInput* number = find<TextInput>("number");
    clickAt("number", 60, 10);
    mViewer.key("ctrl+a");
    mViewer.type("-a3.75");
    mViewer.key("Return");
    settle();
    EXPECT_EQ(number->getValue(), -3.75f);
    moveAway();
    mViewer.key("q");
    settle();
    EXPECT_EQ(number->getText(), "-3.75");

    clickAt("choice", 20, 10);
    mViewer.key("Up");
    mViewer.key("Escape"); // closes the list
    settle();
    EXPECT_EQ(mPanorama->mWorkspace.mContext, nullptr);
    mViewer.key("Up");
    settle();
    EXPECT_EQ(find<Dropdown>("choice")->getSelectedId(), "1");
}

TEST_F(Gallery, EachStateThatMouseAndKeysBring) {
    Sheet sheet;
    const auto shoot = [&](const std::string& name) {
        settle();
        const Box2 world = find<Control>(name)->getAreaWorld();
        sheet.add(frame(), Box2(world.x1 - 3, world.y1 - 3, world.x2 + 3, world.y2 + 3));
    };
    const auto shootBox = [&](float x1, float y1, float x2, float y2) {
        settle();
        sheet.add(frame(), Box2(x1, y1, x2, y2));
    };

    // Buttons: at rest, under the mouse, pushed, pushed and left; in, in and under the mouse; greyed out.
    moveAway();
    shoot("plain");
    moveTo("plain", 50, 10);
    shoot("plain");
    mViewer.buttonDown(1);
    shoot("plain");
    moveTo("plain", 50, 40);
    shoot("plain");
    mViewer.buttonUp(1);
    clickAt("toggle", 20, 10);
    shoot("toggle");
    moveAway();
    shoot("toggle");
    moveTo("greybutton", 20, 10);
    shoot("greybutton");

    // Radio buttons and boxes: under the mouse, pushed, chosen and with the keys; greyed out.
    for (const std::string name : {"radio", "check"}) {
        sheet.newRow();
        moveTo(name, 20, 64);
        shoot(name);
        mViewer.buttonDown(1);
        shoot(name);
        mViewer.buttonUp(1);
        moveAway();
        shoot(name);
        find<Control>(name)->setInactive(true);
        shoot(name);
        find<Control>(name)->setInactive(false);
    }

    // Sliders: under the mouse, beside the handle, held; greyed out; the same, vertical.
    sheet.newRow();
    moveTo("across", 53, 8);
    shoot("across");
    mViewer.buttonDown(1);
    moveTo("across", 120, 8);
    shoot("across");
    mViewer.buttonUp(1);
    shoot("greyslider");
    moveTo("down", 8, 21);
    shoot("down");
    mViewer.buttonDown(1);
    moveTo("down", 8, 60);
    shoot("down");
    mViewer.buttonUp(1);

    // Fields: under the mouse, with the caret, a word and all of it selected; the selection of one that lost
    // the keys; a number, a password, a long text at its end and at its start.
    sheet.newRow();
    moveTo("text", 60, 10);
    shoot("text");
    clickAt("text", 60, 10);
    moveAway();
    shoot("text");
    mViewer.key("shift+Home");
    shoot("text");
    clickAt("number", 60, 10);
    mViewer.type("5");
    shoot("number");
    mViewer.key("ctrl+a");
    shoot("number");
    clickAt("password", 20, 10);
    mViewer.key("End");
    mViewer.type("12");
    shoot("password");
    shoot("greytext");
    sheet.newRow();
    clickAt("overlong", 200, 10);
    mViewer.key("End");
    mViewer.key("ctrl+shift+Left");
    moveAway();
    shoot("overlong");
    mViewer.key("Home");
    shoot("overlong");

    // A list: under the mouse, open with the current row and the one under the mouse, by the keys; greyed
    // out.
    sheet.newRow();
    moveTo("choice", 20, 10);
    shoot("choice");
    clickAt("choice", 20, 10);
    const Box2 choice = find<Control>("choice")->getAreaWorld();
    shootBox(choice.x1 - 3, choice.y1 - 3, choice.x2 + 3, choice.y2 + 60);
    moveTo(choice.x1 + 20, choice.y2 + 40);
    shootBox(choice.x1 - 3, choice.y1 - 3, choice.x2 + 3, choice.y2 + 60);
    mViewer.click(1);
    settle();
    moveAway();
    shoot("choice");
    shoot("greychoice");

    // A tree: a row under the mouse, opened, selected, scrolled both ways.
    sheet.newRow();
    moveTo("tree", 80, 28);
    shoot("tree");
    clickAt("tree", 9, 28);
    clickAt("tree", 25, 46);
    clickAt("tree", 80, 64);
    shoot("tree");
    mViewer.key("End");
    mViewer.key("Up");
    moveAway();
    shoot("tree");

    // Containers and menus: a page under the mouse and another shown, a bar held, a window taken to the
    // front, a menu closed, open, and with the one below it.
    sheet.newRow();
    moveTo("pages", 60, 9);
    shoot("pages");
    clickAt("pages", 60, 9);
    moveAway();
    shoot("pages");
    moveTo("bars", 194, 14);
    mViewer.buttonDown(1);
    moveTo("bars", 194, 40);
    shoot("bars");
    mViewer.buttonUp(1);
    clickAt("window", 40, 8);
    shoot("window");
    sheet.newRow();
    moveTo(15, 10);
    shootBox(0, 0, 240, 24);
    mViewer.click(1);
    shootBox(0, 0, 240, 90);
    moveTo(20, 45);
    shootBox(0, 0, 240, 90);
    mViewer.click(1);
    settle();

    // Curves: a key under the mouse, held, and selected; the menu for a key, and the one below it.
    for (const std::string name : {"curve", "curveorg"}) {
        sheet.newRow();
        const float high = 40.0f - 0.6f * 40.0f; // of the second key
        moveTo(name, 0.3f * 229, high);
        shoot(name);
        mViewer.buttonDown(1);
        moveTo(name, 0.5f * 229, high + 10);
        shoot(name);
        mViewer.buttonUp(1);
        moveTo(name, 150, 60);
        shoot(name);
        moveTo(name, 0.5f * 229, high + 10);
        mViewer.click(3);
        settle();
        const Box2 world = find<Control>(name)->getAreaWorld();
        moveTo(world.x1 + 140, world.y1 + 80);
        shootBox(world.x1 - 3, world.y1 - 3, world.x2 + 3, world.y2 + 50);
        mViewer.key("F12");
        mViewer.click(1);
        settle();
    }

    EXPECT_TRUE(test::matchesReference("panorama_states", sheet.picture()));
}
