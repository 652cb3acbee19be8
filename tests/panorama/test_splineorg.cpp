// The spline widget with a curve of its own. test_spline has what it shares with Spline.
#include "dis_key.h"
#include "pan_splineorg.h"
#include "xml_parser.h"

#include <gtest/gtest.h>
#include <memory>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;

TEST(SplineOrg, HasACurveFromTheStart) {
    SplineOrg spline;
    EXPECT_EQ(spline.getType(), "splineorg");
    ASSERT_NE(spline.mSpline, nullptr);
    EXPECT_EQ(spline.mSpline->evaluate(0.5f), 0);
    const std::unique_ptr<Control> clone(spline.clone());
    EXPECT_NE(dynamic_cast<SplineOrg*>(clone.get()), nullptr);
}

TEST(SplineOrg, KeepsItsNodesSortedByX) {
    SplineOrg spline;
    EXPECT_EQ(spline.addNode({0.5f, 1}), 0);
    EXPECT_EQ(spline.addNode({0, -1}), 0);
    EXPECT_EQ(spline.addNode({0.5f, 2}), 2); // after its equal
    EXPECT_EQ(spline.mSpline->mKeys[0].value, -1);
    EXPECT_EQ(spline.mSpline->mKeys[2].value, 2);
}

TEST(SplineOrg, TakesNodesAlsoAfterItsCurveWasTakenAway) {
    SplineOrg spline;
    spline.setSpline(nullptr, false);
    EXPECT_EQ(spline.addNode({0.5f, 1}), 0);
}

TEST(SplineOrg, LoadsItsTypeAndItsNodesInAnyOrder) {
    xml::XmlParser document;
    document.parse(
        "<panorama><splineorg type=\"linear\"><item x=\"0.5\" y=\"1\"/><item x=\"0\" y=\"-1\"/></splineorg>"
        "</panorama>");
    xml::IteratorConst it = static_cast<const xml::XmlParser&>(document).createIterator("splineorg");
    ASSERT_TRUE(++it);
    SplineOrg spline;
    spline.load(it);
    ASSERT_EQ(spline.mSpline->getNumKeys(), 2);
    EXPECT_FLOAT_EQ(spline.mSpline->evaluate(0.25f), 0);
    spline.setSplineType("square");
    EXPECT_EQ(spline.mSpline->evaluate(0.25f), -1);
}

TEST(SplineOrg, IsEditedLikeASpline) {
    SplineOrg spline;
    spline.setArea(Box2(0, 0, 200, 100));
    spline.addNode({0.5f, 0});
    const auto send = [&](const char* type, Vector2f position) {
        Event event;
        event.type = type;
        event.mousePos = position;
        spline.handleEvent(event);
    };
    send("mousemove", Vector2f(100, 50));
    send("mousedown", Vector2f(100, 50));
    send("mousemove", Vector2f(160, 75));
    send("mouseup", Vector2f(160, 75));
    EXPECT_FLOAT_EQ(spline.mSpline->mKeys[0].time, 0.8f);
    EXPECT_FLOAT_EQ(spline.mSpline->mKeys[0].value, 0.5f);
}
