// Shared by the tests of the control tree: a bare control, a root that records actions, events, and loading
// from a piece of a layout file.
#pragma once

#include "pan_control.h"
#include "pan_workspace.h"
#include "support.h"
#include "xml_parser.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

namespace zentrak::mathbase {

inline void PrintTo(const Box2& box, std::ostream* os) {
    *os << "(" << box.x1 << ", " << box.y1 << ", " << box.x2 << ", " << box.y2 << ")";
}
inline void PrintTo(const Vector2f& v, std::ostream* os) {
    *os << "(" << v.x << ", " << v.y << ")";
}

} // namespace zentrak::mathbase

namespace zentrak::test {

using mathbase::Box2;
using mathbase::Vector2f;

// A bare control that records the events it gets.
class Plain : public panorama::Control {
public:
    std::vector<std::string> heard; // the types of the events, with their text if they have one
    int draws = 0;

    explicit Plain(Box2 area = Box2()) { mArea.area = area; }
    panorama::Control* clone() override { return new Plain; }
    int handleEvent(panorama::Event& event) override {
        heard.push_back(event.text.empty() ? event.type : event.type + " " + event.text);
        return Control::handleEvent(event);
    }
    void draw() override {
        ++draws;
        Control::draw();
    }
};

// Records the actions that reach it.
class Heard : public panorama::Callback {
public:
    std::vector<int> actions;
    std::vector<panorama::Control*> sources;
    std::vector<std::string> texts;
    std::vector<panorama::Context*> contexts;

    void controlAction(panorama::Control* source, panorama::Action action) override {
        actions.push_back(int(action));
        sources.push_back(source);
    }
    void contextAction(panorama::Context* context, std::string text) override {
        contexts.push_back(context);
        texts.push_back(text);
    }
};

// A workspace of 800 by 600.
class TreeTest : public ::testing::Test {
protected:
    panorama::Workspace root;

    TreeTest() { root.setArea(Box2(0, 0, 800, 600)); }
};

inline panorama::Event makeEvent(const std::string& type, Vector2f position = Vector2f(), int button = 0) {
    panorama::Event event;
    event.type = type;
    event.mousePos = position;
    event.button = button;
    return event;
}

inline int send(panorama::Control& control, const std::string& type, Vector2f position = Vector2f(),
                int button = 0) {
    panorama::Event event = makeEvent(type, position, button);
    return control.handleEvent(event);
}

// A mouse move as the window reports it: the delta is the old position minus the new one.
inline int sendMove(panorama::Control& control, Vector2f from, Vector2f to) {
    panorama::Event event = makeEvent("mousemove", to);
    event.mouseDelta = from - to;
    return control.handleEvent(event);
}

// Loads a control from one element.
inline void loadText(panorama::Control& control, const std::string& element) {
    xml::XmlParser document;
    document.parse("<panorama>" + element + "</panorama>");
    const xml::XmlParser& root = document;
    xml::IteratorConst it = root.createIterator("");
    ASSERT_TRUE(++it);
    control.load(it);
}

} // namespace zentrak::test
