// The curve with nodes of its own: its file form, its shape, and what each event does to it.
#include "dis_key.h"
#include "pan_splineorg.h"
#include "xml_parser.h"

#include <gtest/gtest.h>
#include <string>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;

namespace {

// A widget of 200 by 100 at the origin.
class SplineOrgTest : public ::testing::Test {
protected:
    SplineOrg mSpline;

    SplineOrgTest() { mSpline.setArea(Box2(0, 0, 200, 100)); }

    void send(const char* type, float x, float y, int button = 0) {
        Event event;
        event.type = type;
        event.mousePos = Vector2f(200 * x, 50 + 50 * y);
        event.button = button;
        mSpline.handleEvent(event);
    }
    void press(int key) {
        Event event;
        event.type = "keydown";
        event.key = key;
        mSpline.handleEvent(event);
    }
    void choose(const std::string& path) {
        Event event;
        event.type = "context";
        event.text = path;
        mSpline.handleEvent(event);
    }
};

} // namespace

TEST_F(SplineOrgTest, LoadsItsNodesInAnyOrder) {
    xml::XmlParser document;
    document.parse(
        "<panorama><splineorg type=\"linear\"><item x=\"0.5\" y=\"1\"/><item x=\"0\" y=\"-1\"/></splineorg>"
        "</panorama>");
    xml::IteratorConst it = static_cast<const xml::XmlParser&>(document).createIterator("splineorg");
    ASSERT_TRUE(++it);
    mSpline.load(it);
    EXPECT_EQ(mSpline.getType(), "splineorg");
    EXPECT_EQ(mSpline.mMode, "linear");
    ASSERT_EQ(mSpline.mNodes.size(), 2u);
    EXPECT_EQ(mSpline.mNodes[0].y, -1);
    EXPECT_EQ(mSpline.mNodes[1].x, 0.5f);
}

TEST_F(SplineOrgTest, EachModeHasItsShape) {
    EXPECT_EQ(mSpline.evaluate(0.5f), 0);
    mSpline.addNode({0, 0});
    mSpline.addNode({0.5f, 1});
    mSpline.addNode({1, 0});
    mSpline.setSplineType("square");
    EXPECT_EQ(mSpline.evaluate(0.25f), 0);
    EXPECT_EQ(mSpline.evaluate(0.5f), 1);
    mSpline.setSplineType("linear");
    EXPECT_FLOAT_EQ(mSpline.evaluate(0.25f), 0.5f);
    mSpline.setSplineType("smooth");
    EXPECT_FLOAT_EQ(mSpline.evaluate(0.5f), 1);
    EXPECT_FLOAT_EQ(mSpline.evaluate(0.25f), 0.625f); // leaves steeply and arrives level
    EXPECT_EQ(mSpline.evaluate(-1), 0);
    EXPECT_EQ(mSpline.evaluate(2), 0);
    mSpline.setSplineType("cubic");
    EXPECT_EQ(mSpline.mMode, "smooth");
}

TEST_F(SplineOrgTest, NodesAtOnePlaceAreFinite) {
    for (int i = 0; i < 3; ++i)
        mSpline.addNode({0.5f, float(i)});
    for (const char* type : {"square", "linear", "smooth"}) {
        mSpline.setSplineType(type);
        EXPECT_EQ(mSpline.evaluate(0.5f), 2) << type;
        EXPECT_EQ(mSpline.evaluate(0.4f), 0) << type;
    }
}

TEST_F(SplineOrgTest, ADragAcrossANeighbourKeepsTheNode) {
    mSpline.addNode({0.2f, 0});
    mSpline.addNode({0.6f, 0.5f});
    send("mousemove", 0.2f, 0);
    EXPECT_EQ(mSpline.mHoverNode, 0);
    send("mousedown", 0.2f, 0);
    send("mousemove", 0.8f, 0.1f);
    EXPECT_EQ(mSpline.mDragNode, 1);
    EXPECT_EQ(mSpline.mSelected, 1);
    EXPECT_FLOAT_EQ(mSpline.mNodes[1].x, 0.8f);
    send("mouseup", 0.8f, 0.1f);
    send("mousemove", 0.1f, 0);
    EXPECT_FLOAT_EQ(mSpline.mNodes[1].x, 0.8f);
}

TEST_F(SplineOrgTest, MenusAndKeysAddAndDelete) {
    send("mousemove", 0.3f, 0.4f);
    send("mousedown", 0.3f, 0.4f, 1);
    choose("spline.add key");
    ASSERT_EQ(mSpline.mNodes.size(), 1u);
    EXPECT_FLOAT_EQ(mSpline.mNodes[0].y, 0.4f);
    press(display::KEY_INSERT); // behind the last: at the right edge
    ASSERT_EQ(mSpline.mNodes.size(), 2u);
    EXPECT_EQ(mSpline.mNodes[1].x, 1);
    mSpline.mSelected = 0;
    press(display::KEY_INSERT);
    EXPECT_FLOAT_EQ(mSpline.mNodes[1].x, 0.65f);
    press(display::KEY_RIGHT);
    press(display::KEY_RIGHT);
    press(display::KEY_RIGHT);
    EXPECT_EQ(mSpline.mSelected, 2);
    press(display::KEY_DEL);
    EXPECT_EQ(mSpline.mNodes.size(), 2u);
    send("mousemove", 0.3f, 0.4f);
    send("mousedown", 0.3f, 0.4f, 1);
    choose("spline.delete key");
    EXPECT_EQ(mSpline.mNodes.size(), 1u);
    mSpline.mDeleteIndex = 7;
    choose("spline.delete key"); // there is none
    EXPECT_EQ(mSpline.mNodes.size(), 1u);
    choose("spline.type.square");
    EXPECT_EQ(mSpline.mMode, "square");
}

TEST_F(SplineOrgTest, KeysWithoutNodesDoNothing) {
    for (const int key : {display::KEY_LEFT, display::KEY_RIGHT, display::KEY_DEL})
        press(key);
    EXPECT_EQ(mSpline.mSelected, -1);
    press(display::KEY_INSERT);
    ASSERT_EQ(mSpline.mNodes.size(), 1u);
    EXPECT_EQ(mSpline.mNodes[0].x, 0);
    EXPECT_EQ(mSpline.mNodes[0].y, 0);
}
