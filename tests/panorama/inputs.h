// Shared by the tests of the input controls: a tree without a window, the events of a user, and the resulting
// actions.
#pragma once

#include "dis_key.h"
#include "pan_event.h"
#include "pan_workspace.h"
#include "support.h"
#include "xml_parser.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <locale.h>
#include <string>
#include <utility>
#include <vector>

namespace zentrak::test {

// While it lives, the C library writes numbers with a comma, if such a locale is available.
class CommaLocale {
public:
    CommaLocale() : mBefore(setlocale(LC_NUMERIC, nullptr)) {
        runCommand("localedef -i de_DE -f UTF-8 " + mFolder.file("de_DE.UTF-8"));
        setenv("LOCPATH", mFolder.path().c_str(), 1);
        mMade = setlocale(LC_NUMERIC, "de_DE.UTF-8") && std::string(localeconv()->decimal_point) == ",";
    }
    ~CommaLocale() {
        setlocale(LC_NUMERIC, mBefore.c_str());
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    explicit operator bool() const { return mMade; }

private:
    TempDir mFolder;
    std::string mBefore;
    bool mMade = false;
};

// A workspace of 800 by 600 pixels that records the actions it gets.
class InputTest : public ::testing::Test, protected panorama::Callback {
protected:
    typedef std::vector<int> Actions;

    panorama::Workspace mRoot;
    Actions mActions;
    panorama::Control* mSource = nullptr; // of the last action

    InputTest() {
        mRoot.setArea(mathbase::Box2(0, 0, 800, 600));
        mRoot.setCallback(this);
    }

    void controlAction(panorama::Control* control, panorama::Action action) override {
        mActions.push_back(action);
        mSource = control;
    }

    Actions takeActions() { return std::exchange(mActions, Actions()); }

    // A new control in the workspace, or in `parent`.
    template <class Type>
    Type* add(const mathbase::Box2& area, panorama::Control* parent = nullptr) {
        Type* control = new Type;
        (parent ? parent : &mRoot)->addControl(control, -1);
        control->setArea(area);
        return control;
    }

    // The same from an element of a layout file, given without the type's name.
    template <class Type>
    Type* load(const mathbase::Box2& area, const std::string& element) {
        Type* control = add<Type>(area);
        reload(control, element);
        control->setMaximized(false);
        control->setArea(area);
        return control;
    }
    void reload(panorama::Control* control, const std::string& element) {
        xml::XmlParser document;
        document.parse("<panorama><control " + element + "</panorama>");
        const xml::XmlNode& root = document;
        xml::IteratorConst it = root.createIterator("control");
        ASSERT_TRUE(++it);
        control->load(it);
    }

    // Events, sent to the root.
    int send(panorama::Event& event) { return mRoot.handleEvent(event); }
    int mouse(const char* type, float x, float y, int button = 0, bool doubleClick = false,
              int modifiers = 0) {
        panorama::Event event;
        event.type = type;
        event.mousePos = mMouse = mathbase::Vector2f(x, y);
        event.button = button;
        event.doubleClick = doubleClick;
        event.control = modifiers;
        return send(event);
    }
    int move(float x, float y) { return mouse("mousemove", x, y); }
    int press(float x, float y, int button = 0) {
        move(x, y);
        return mouse("mousedown", x, y, button);
    }
    int release(float x, float y, int button = 0) {
        move(x, y);
        return mouse("mouseup", x, y, button);
    }
    void click(float x, float y) {
        press(x, y);
        release(x, y);
    }
    int wheel(float x, float y, float steps, int modifiers = 0) {
        panorama::Event event;
        event.type = "mousewheel";
        event.mousePos = mMouse = mathbase::Vector2f(x, y);
        event.wheelDelta = steps;
        event.control = modifiers;
        return send(event);
    }
    int key(int code, int modifiers = 0) {
        panorama::Event event;
        event.type = "keydown";
        event.mousePos = mMouse;
        event.key = code;
        event.control = modifiers;
        const int result = send(event);
        event.type = "keyup";
        send(event);
        return result;
    }
    int type(const std::string& text) {
        int result = 1;
        for (const char c : text) {
            panorama::Event event;
            event.type = "keychardown";
            event.mousePos = mMouse;
            event.character = static_cast<unsigned char>(c);
            result &= send(event);
        }
        return result;
    }

    mathbase::Vector2f mMouse;
};

} // namespace zentrak::test
