// The toolkit on a real window: its files, events of a real mouse and keys, and its drawing compared pixel by
// pixel with one call per vertex.
#include "pan_context.h"
#include "pan_flow.h"
#include "pan_panel.h"
#include "pan_panorama.h"
#include "pan_textinput.h"

#include "allocations.h"
#include "gl_fixture.h"
#include "input.h"
#include "plain_render.h"
#include "support.h"
#include "tree.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Vector4f;

namespace {

constexpr int WIDTH = 400, HEIGHT = 300;

class RenderTest : public GlTest {
protected:
    PlainRender plain;
    Render batched;

    RenderTest() {
        window(WIDTH, HEIGHT);
        plain.setup(&display());
        batched.setup(&display());
    }

    Picture draw(Render& render, const std::function<void(Render&)>& shapes, Vector2f offset = Vector2f(),
                 float margin = 0) {
        return frame([&] {
            glClearColor(0.2f, 0.3f, 0.4f, 0);
            glClear(GL_COLOR_BUFFER_BIT);
            render.setupDraw(Vector2f(WIDTH, HEIGHT), offset, margin);
            shapes(render);
            render.flush();
            glDisable(GL_SCISSOR_TEST);
        });
    }

    // How many pixels differ by more than `shades` in a channel.
    static int countDifferent(const Picture& a, const Picture& b, int shades) {
        int count = 0;
        for (size_t i = 0; i < a.rgba.size(); i += 4) {
            int most = 0;
            for (size_t channel = 0; channel < 3; ++channel)
                most = std::max(most, std::abs(int(a.rgba[i + channel]) - int(b.rgba[i + channel])));
            count += most > shades;
        }
        return count;
    }

    void expectSame(const std::function<void(Render&)>& shapes, int edges = 0, Vector2f offset = Vector2f(),
                    float margin = 0) {
        const Picture one = draw(plain, shapes, offset, margin),
                      other = draw(batched, shapes, offset, margin);
        const Picture nothing = draw(plain, [](Render&) {});
        EXPECT_GT(countDifferent(one, nothing, 2), 20) << "nothing was drawn";
        const int different = countDifferent(one, other, 2);
        EXPECT_LE(different, edges);
        if (different > edges) {
            writePng(binaryPath("pictures-failed/render_plain.png"), one);
            writePng(binaryPath("pictures-failed/render_batched.png"), other);
        }
    }
};

TEST_F(RenderTest, BoxesAreThoseOfThePlainWay) {
    expectSame([](Render& render) {
        for (int direction : {0, 1, 2}) {
            const float x = 10 + 120 * float(direction);
            render.setColor(Vector4f(1, 0, 0, 0.7f), Vector4f(0, 1, 1, 0.9f));
            render.setClipArea(Box2(0, 0, -1, -1));
            render.drawBox(Box2(x, 10, x + 100, 90), direction);
            render.setClipArea(Box2(x + 20, 110, x + 70, 140)); // the gradient spans the whole box
            render.drawBox(Box2(x, 100, x + 100, 190), direction);
            render.setColor(Vector4f(1, 1, 0, 0.5f), NO_COLOR);
            render.drawBox(Box2(x + 10.5f, 105.25f, x + 60.75f, 180), direction);
            render.setClipArea(Box2(x + 0.7f, 200.7f, x + 50.2f, 250.9f)); // cut to whole pixels
            render.drawBox(Box2(x - 100, 150, x + 200, 290), direction);
        }
    });
}

TEST_F(RenderTest, BordersAreThoseOfThePlainWay) {
    expectSame(
        [](Render& render) {
            render.setColor(Vector4f(1, 0, 0, 0.7f), Vector4f(0, 1, 1, 0.9f));
            render.drawBorder(Box2(10, 10, 60, 40));
            render.drawBorder(Box2(70, 10, 72, 40));
            render.setColor(Vector4f(1, 1, 1, 1), NO_COLOR);
            render.drawBorder(Box2(10.3f, 50.4f, 60.2f, 90.1f));
            render.setClipArea(Box2(110, 20, 180, 80));
            render.drawBorder(Box2(100, 10, 150, 60));
            render.drawBorder(Box2(150, 50, 300, 300));
        },
        6); // at corners a loop of lines may blend twice
}

TEST_F(RenderTest, CirclesAndLinesAreThoseOfThePlainWay) {
    expectSame(
        [](Render& render) {
            render.setColor(Vector4f(1, 0.5f, 0, 0.6f), NO_COLOR);
            render.drawCircle(Box2(10, 10, 110, 90), -1, 0);
            render.drawCircle(Box2(120, 10, 200, 90), 2, 0.1f); // three, at least
            render.drawCircle(Box2(210, 10, 290, 90), 5, 0.25f);
            render.drawLine(Vector2f(10.5f, 100.5f), Vector2f(200.5f, 100.5f));
            render.drawLine(Vector2f(10.5f, 110.5f), Vector2f(10.5f, 200.5f));
            render.drawLine(Vector2f(20.5f, 110.5f), Vector2f(300.5f, 180.5f));
            render.drawLine(Vector2f(60.5f, 290.5f), Vector2f(30.5f, 120.5f));
            render.setClipArea(Box2(210, 110, 290, 190));
            render.drawCircle(Box2(200, 100, 320, 220), -1, 0);
            render.drawLine(Vector2f(200.5f, 250.5f), Vector2f(390.5f, 100.5f));
        },
        60); // rounding along sloped edges
}

TEST_F(RenderTest, TextIsThatOfThePlainWayAndOnWholePixels) {
    expectSame([](Render& render) {
        render.setColor(Vector4f(1, 1, 1, 1), NO_COLOR);
        for (int mode : {0, 1, 2}) {
            render.setFontMode(mode);
            render.drawText("The quick brown fox, 0123 \xe4\xff", Vector2f(200.4f, 20.3f + 30 * float(mode)));
        }
        render.setFontMode(0);
        render.setClipArea(Box2(63, 104, 120, 112));
        render.drawText("cut on all of its sides", Vector2f(50, 108));
        render.setClipArea(Box2(0, 0, -1, -1));
        render.setColor(Vector4f(1, 0, 0, 0.5f), NO_COLOR);
        render.drawText("half seen", Vector2f(50, 150));
    });
}

TEST_F(RenderTest, ShapesAndTextOverEachOtherKeepTheirOrder) {
    expectSame([](Render& render) {
        for (int i = 0; i < 12; ++i) {
            const float x = 20 + 13 * float(i), y = 20 + 9 * float(i);
            render.setColor(Vector4f(0.1f * float(i % 8), 0.3f, 0.6f, 0.8f), NO_COLOR);
            render.drawBox(Box2(x, y, x + 120, y + 30), 0);
            render.setColor(Vector4f(1, 1, 0.5f, 1), NO_COLOR);
            render.setFontMode(i % 3);
            render.drawText("window " + std::to_string(i), Vector2f(x + 60, y + 15));
        }
    });
}

// Shapes and text are drawn by kind: any mix of the two must look as if each were drawn at once.
TEST_F(RenderTest, AnyMixOfShapesAndTextIsThatOfThePlainWay) {
    for (unsigned seed = 1; seed <= 12; ++seed)
        expectSame(
            [&](Render& render) {
                std::mt19937 random(seed);
                const auto upTo = [&](int most) { return float(random() % unsigned(most + 1)); };
                const auto color = [&](float alpha) {
                    return Vector4f(upTo(10) / 10, upTo(10) / 10, upTo(10) / 10, alpha);
                };
                for (int i = 0; i < 120; ++i) {
                    const float x = upTo(WIDTH + 40) - 20, y = upTo(HEIGHT + 40) - 20;
                    const float width = 1 + upTo(i % 5 == 0 ? 200 : 30),
                                height = 1 + upTo(i % 5 == 0 ? 160 : 20);
                    const bool covers = random() % 2 == 0;
                    render.setClipArea(i % 7 == 0 ? Box2(40, 30, 300, 200) : Box2(0, 0, 0, -1));
                    render.setColor(color(covers ? 1 : 0.3f), covers ? color(1) : NO_COLOR);
                    switch (random() % 4) {
                    case 0:
                        render.drawBox(Box2(x, y, x + width, y + height), int(random() % 2));
                        break;
                    case 1:
                        render.setColor(color(1), NO_COLOR); // thin; a border of lines ends differently
                        render.drawBox(Box2(x, y, x + width, y + 1), 0);
                        break;
                    default:
                        render.setFontMode(int(random() % 3));
                        render.drawText("text over " + std::to_string(i), Vector2f(x, y));
                        break;
                    }
                }
            },
            0, Vector2f(float(seed % 3) * 7, -float(seed % 2) * 5));
}

TEST_F(RenderTest, TheViewOffsetMovesThePictureAndItsClip) {
    expectSame(
        [](Render& render) {
            render.setClipArea(Box2(50, 40, 150, 140));
            render.setColor(Vector4f(1, 0, 0, 1), Vector4f(0, 0, 1, 1));
            render.drawBox(Box2(0, 0, 200, 200), 1);
            render.setColor(Vector4f(1, 1, 1, 1), NO_COLOR);
            render.drawText("moved", Vector2f(100, 90));
        },
        0, Vector2f(30, -20));
}

// A margin shrinks everything except the clip area, which is in pixels of the window.
TEST_F(RenderTest, AMarginShowsMoreAndLeavesTheClipAreaWhereItIs) {
    const auto shapes = [](Render& render) {
        render.setColor(Vector4f(0, 1, 0, 1), NO_COLOR);
        render.drawBox(Box2(-40, -30, 10, 10), 0);
        render.setClipArea(Box2(50, 40, 150, 140));
        render.setColor(Vector4f(1, 0, 0, 1), NO_COLOR);
        render.drawBox(Box2(0, 0, WIDTH, HEIGHT), 0);
    };
    expectSame(shapes, 0, Vector2f(), 50);
    expectSame(shapes, 0, Vector2f(13, -8), 50);
    const Picture picture = draw(batched, shapes, Vector2f(), 50);
    EXPECT_EQ(picture.at(50, 40)[0], 255);
    EXPECT_EQ(picture.at(149, 139)[0], 255);
    EXPECT_NE(picture.at(49, 40)[0], 255);
    EXPECT_NE(picture.at(149, 140)[0], 255);
    EXPECT_EQ(picture.at(25, 30)[1], 255); // beyond the upper left corner
}

TEST_F(RenderTest, AClipAreaWithAY2OfMinusOneDisablesClipping) {
    const Picture picture = draw(batched, [](Render& render) {
        render.setClipArea(Box2(10, 10, 11, 11));
        render.setClipArea(Box2(5, 5, 6, -1));
        render.setColor(Vector4f(1, 1, 1, 1), NO_COLOR);
        render.drawBox(Box2(0, 0, WIDTH, HEIGHT), 0);
    });
    EXPECT_EQ(picture.at(0, 0)[0], 255);
    EXPECT_EQ(picture.at(WIDTH - 1, HEIGHT - 1)[0], 255);
}

TEST_F(RenderTest, ANegativeSecondAlphaGivesAFlatBox) {
    batched.setColor(Vector4f(0.5f, 0.5f, 0.5f, 1), Vector4f(1, 0, 0, -0.1f));
    EXPECT_EQ(batched.mColorSecond, batched.mColorFirst);
    batched.setColor(Vector4f(0.5f, 0.5f, 0.5f, 1), Vector4f(1, 0, 0, 0));
    EXPECT_EQ(batched.mColorSecond, Vector4f(1, 0, 0, 0));
}

TEST_F(RenderTest, ClippedShapesAreNotDrawnAtAll) {
    frame([&] {
        batched.setupDraw(Vector2f(WIDTH, HEIGHT), Vector2f(), 0);
        batched.setClipArea(Box2(0, 0, 0, 0));
        batched.drawBox(Box2(0, 0, 100, 100), 0);
        batched.drawText("nothing", Vector2f(50, 50));
        batched.drawCircle(Box2(0, 0, 100, 100), -1, 0);
        batched.drawBorder(Box2(0, 0, 100, 100));
        batched.drawLine(Vector2f(0, 0), Vector2f(100, 100));
        const Vector4f color(1, 1, 1, 1);
        glColor4fv(color); // a draw would change it
        batched.flush();
    });
    const Picture picture = draw(batched, [](Render& render) {
        render.setColor(Vector4f(1, 1, 1, 1), NO_COLOR);
        render.setClipArea(Box2(50, 50, 50, 100)); // no width
        render.drawBox(Box2(0, 0, WIDTH, HEIGHT), 0);
        render.setClipArea(Box2(60, 60, 50, 50)); // inverted
        render.drawBox(Box2(0, 0, WIDTH, HEIGHT), 0);
    });
    EXPECT_EQ(picture.at(50, 60)[0], 51);
    EXPECT_EQ(picture.at(55, 55)[0], 51);
}

TEST_F(RenderTest, ShapesOfAnySizeAndOfNanAreAccepted) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const float sides[] = {0, -50, 50, 1e9f, -1e9f, 3e38f, -3e38f, inf, -inf, nan};
    const Picture picture = draw(batched, [&](Render& render) {
        for (float a : sides)
            for (float b : sides)
                for (float c : sides) {
                    render.setColor(Vector4f(a, b, c, 0.01f), Vector4f(c, b, a, 0.01f));
                    render.setClipArea(Box2(a, b, c, 100));
                    render.drawBox(Box2(a, b, c, 60), 1);
                    render.setClipArea(Box2(0, 0, 400, 200));
                    render.drawBox(Box2(a, b, c, 60), 0);
                    render.drawBorder(Box2(a, 0, b, c));
                    render.drawCircle(Box2(a, b, c, 60), -1, b);
                    render.drawLine(Vector2f(a, b), Vector2f(c, a));
                    render.drawText("x", Vector2f(a, b));
                }
        render.setClipArea(Box2(0, 0, -1, -1));
        render.setColor(Vector4f(0, 1, 0, 1), NO_COLOR);
        render.drawBox(Box2(0, 200, 400, 300), 0);
    });
    EXPECT_EQ(picture.at(200, 250)[1], 255);
}

TEST_F(RenderTest, WithoutADisplayAFrameCannotBegin) {
    EXPECT_DEATH(Render().setupDraw(Vector2f(1, 1), Vector2f(), 0), "mDisplay");
}

TEST_F(RenderTest, AMissingFontIsTheFontsFailure) {
    am::ArchiveManager empty;
    display().setArchive(&empty);
    Render lost;
    EXPECT_THROW(lost.setup(&display()), Exception);
    display().setArchive(&window().archives());
    frame([&] { // draws everything but text
        lost.setupDraw(Vector2f(WIDTH, HEIGHT), Vector2f(), 0);
        lost.drawBox(Box2(0, 0, 10, 10), 0);
        lost.drawText("text", Vector2f(5, 5));
        lost.flush();
    });
    EXPECT_EQ(lost.getTextLength("text"), 0);
    EXPECT_EQ(lost.getFontHeight(), 0);
}

// The toolkit

class Colored : public Plain {
public:
    using Plain::Plain;
    void draw() override {
        ++draws;
        getRender()->setColor(Vector4f(1, 1, 1, 1), NO_COLOR);
        getRender()->drawBox(mArea.world, 0);
        Control::draw();
    }
};

class PanoramaTest : public GlTest {
protected:
    TempDir files;
    std::unique_ptr<Panorama> toolkit;

    PanoramaTest() {
        window(WIDTH, HEIGHT);
        window().archives().addArchive(files.path());
        toolkit = std::make_unique<Panorama>(&display());
    }

    Workspace& root() { return toolkit->mWorkspace; }
    Plain& add(Box2 area, Control* parent = nullptr) {
        Plain* control = new Colored(area);
        if (parent)
            parent->addControl(control, -1);
        else
            toolkit->addControl(control);
        return *control;
    }
    void file(const std::string& name, const std::string& text) { writeFile(files.file(name), text); }
    Picture shown() {
        return frame([&] { toolkit->onDraw(); });
    }
};

TEST_F(PanoramaTest, RegistersTheTypesInTheirOrder) {
    const std::vector<std::string> types = {
        "button",   "checkbox", "dropdown",    "flow",      "frame",  "image",    "label",     "layoutstack",
        "menubar",  "panel",    "radiobutton", "scrollbar", "slider", "spline",   "splineorg", "stat",
        "tabframe", "tabview",  "textinput",   "treeview",  "window", "workspace"};
    std::vector<std::string> found;
    for (Control* prototype : ControlFactory::mControl)
        found.push_back(prototype->getType());
    EXPECT_EQ(found, types);
    Panorama second(&display()); // once, however many there are
    EXPECT_EQ(ControlFactory::mControl.size(), types.size());
    for (const std::string& type : types) {
        const std::unique_ptr<Control> made(controlFactory.create(type));
        ASSERT_TRUE(made) << type;
        EXPECT_EQ(made->getType(), type);
    }
}

TEST_F(PanoramaTest, TheWorkspaceIsTheWindow) {
    EXPECT_EQ(root().getArea(), Box2(0, 0, WIDTH, HEIGHT));
    EXPECT_EQ(root().getDisplay(), &display());
    EXPECT_FALSE(toolkit->mDragging);
    EXPECT_EQ(toolkit->mViewOffset, Vector2f());
}

TEST_F(PanoramaTest, LoadsALayoutWithItsStyle) {
    file("look.xml", "<panorama><panel caption='from the style'/></panorama>");
    file("window.xml",
         "<?xml version='1.0'?><panorama><workspace style='look.xml'><child>"
         "<panel id='a'/><flow id='b' direction='horisontal'><area x='10' y='20' w='100' h='50'/>"
         "<child><panel id='c' caption='own'><area size='30'/></panel></child></flow>"
         "</child></workspace></panorama>");
    toolkit->load("window.xml");
    Control* a = root().findControl("a");
    Control* b = root().findControl("b");
    Control* c = root().findControl("c");
    ASSERT_TRUE(a && b && c);
    EXPECT_EQ(a->getCaption(), "from the style");
    EXPECT_EQ(a->getArea(), Box2(0, 0, WIDTH, HEIGHT));
    EXPECT_EQ(b->getArea(), Box2(10, 20, 110, 70));
    EXPECT_EQ(c->getArea(), Box2(0, 0, 30, 50));
    EXPECT_EQ(c->getCaption(), "own");
    EXPECT_EQ(toolkit->mStyleDocument, root().mStyle);
    EXPECT_EQ(root().getName(), "workspace");
    shown();
}

TEST_F(PanoramaTest, AMissingLayoutThrows) {
    try {
        toolkit->load("nowhere.xml");
        FAIL();
    } catch (const Exception& error) {
        EXPECT_STREQ(error.what(), "Could not find the file 'nowhere.xml'.");
    }
}

TEST_F(PanoramaTest, ALayoutWithAnotherRootIsIgnored) {
    file("other.xml", "<setup><workspace><child><panel id='a'/></child></workspace></setup>");
    toolkit->load("other.xml");
    EXPECT_EQ(root().getControlSize(), 0u);
}

TEST_F(PanoramaTest, AMissingStyleIsLogged) {
    file("a.xml",
         "<panorama><workspace style='none.xml'><child><panel id='a'/></child></workspace></panorama>");
    test::CaptureStdout out;
    toolkit->load("a.xml");
    EXPECT_NE(out.text().find("The style file 'none.xml' of the layout 'a.xml' is missing"),
              std::string::npos);
    EXPECT_TRUE(root().findControl("a"));
    EXPECT_EQ(root().mStyle, nullptr);
}

TEST_F(PanoramaTest, AStyleWithAnotherRootEndsTheLoading) {
    file("wrong.xml", "<style></style>");
    file("b.xml",
         "<panorama><workspace style='wrong.xml'><child><panel id='b'/></child></workspace></panorama>");
    toolkit->load("b.xml");
    EXPECT_FALSE(root().findControl("b"));
    EXPECT_EQ(root().mStyle, nullptr);
}

TEST_F(PanoramaTest, OnlyTheWorkspaceDrawsItsZeroSizedControls) {
    Plain& group = add(Box2(0, 0, 100, 100));
    Plain& inside = add(Box2(0, 0, 0, 50), &group);
    Plain& half = add(Box2(0, 0, 0.5f, 50), &group);
    Plain& outside = add(Box2(200, 0, 250, 50), &group);
    Plain& hidden = add(Box2(0, 0, 50, 50), &group);
    Plain& seen = add(Box2(99, 0, 150, 50), &group);
    Plain& top = add(Box2(0, 0, 0, 0));
    hidden.mVisible = false;
    frame([] {}); // the display draws its listeners
    EXPECT_EQ(group.draws, 1);
    EXPECT_EQ(inside.draws, 0);
    EXPECT_EQ(half.draws, 0);
    EXPECT_EQ(outside.draws, 0);
    EXPECT_EQ(hidden.draws, 0);
    EXPECT_EQ(seen.draws, 1);
    EXPECT_EQ(top.draws, 1); // the workspace's
}

TEST_F(PanoramaTest, ChildrenAreCutAtTheirParents) {
    Plain& group = *new Plain(Box2(100, 100, 200, 200));
    toolkit->addControl(&group);
    add(Box2(50, 50, 500, 500), &group);
    const Picture picture = shown();
    EXPECT_EQ(picture.at(149, 149)[0], 0);
    EXPECT_EQ(picture.at(150, 150)[0], 255);
    EXPECT_EQ(picture.at(199, 199)[0], 255);
    EXPECT_EQ(picture.at(200, 199)[0], 0);
    EXPECT_EQ(picture.at(199, 200)[0], 0);
}

TEST_F(PanoramaTest, AReleaseOfTheRightButtonEndsPanning) {
    toolkit->mDragging = true;
    display::MouseMoveEvent move;
    move.mousePos = Vector2f(123, 45);
    move.mouseDelta = Vector2f(-3, 4);
    EXPECT_EQ(toolkit->onMouseMove(move), display::Listener::WHATEVER);
    EXPECT_EQ(toolkit->mViewOffset, Vector2f(-3, 4));
    display::MouseButtonEvent up;
    up.button = display::MOUSE_LEFT;
    toolkit->onMouseUp(up);
    EXPECT_TRUE(toolkit->mDragging);
    up.button = display::MOUSE_RIGHT;
    toolkit->onMouseUp(up);
    EXPECT_FALSE(toolkit->mDragging);
}

TEST_F(PanoramaTest, TheViewOffsetIsAddedToTheMouse) {
    Plain& control = add(Box2(100, 100, 110, 110));
    toolkit->mViewOffset = Vector2f(90, 80);
    display::MouseButtonEvent down;
    down.mousePos = Vector2f(15, 25);
    EXPECT_EQ(toolkit->onMouseDown(down), display::Listener::BLOCK);
    EXPECT_EQ(control.heard.back(), "mousedown");
    down.mousePos = Vector2f(105, 105);
    EXPECT_EQ(toolkit->onMouseDown(down), display::Listener::WHATEVER);
}

TEST_F(PanoramaTest, TwoMovesWithinOnePixelAreOne) {
    Plain& control = add(Box2(0, 0, WIDTH, HEIGHT));
    display::MouseMoveEvent move;
    const auto moves = [&] { return std::count(control.heard.begin(), control.heard.end(), "mousemove"); };
    move.mousePos = Vector2f(210.25f, 33.5f);
    EXPECT_EQ(toolkit->onMouseMove(move), 0); // moves never block
    move.mousePos = Vector2f(210.75f, 33.0f);
    EXPECT_EQ(toolkit->onMouseMove(move), 0);
    EXPECT_EQ(moves(), 1);
    move.mousePos = Vector2f(210.75f, 34.0f);
    toolkit->onMouseMove(move);
    EXPECT_EQ(moves(), 2);
}

TEST_F(PanoramaTest, EventsAndFramesAllocateNothingOnceWarm) {
    Flow* flow = new Flow;
    toolkit->addControl(flow);
    flow->setMaximized(true);
    for (int i = 0; i < 50; ++i) {
        Panel* panel = new Panel;
        flow->addControl(panel);
        flow->setPercent(panel, 1);
        panel->setCaption("a panel with a caption " + std::to_string(i));
    }
    flow->setArea(flow->getArea());
    const auto round = [&](int i) {
        display::MouseMoveEvent move;
        move.mousePos = Vector2f(float(i % 300), float(i * 7 % 290));
        toolkit->onMouseMove(move);
        display::MouseButtonEvent button;
        button.mousePos = move.mousePos;
        toolkit->onMouseDown(button);
        toolkit->onMouseUp(button);
        display::KeyEvent key;
        toolkit->onKeyDown(key);
        toolkit->onDraw();
    };
    for (int i = 0; i < 20; ++i)
        frame([&] { round(i); });
    size_t before = 0, after = 0;
    frame([&] {
        before = allocationCount();
        for (int i = 0; i < 100; ++i)
            round(i);
        after = allocationCount();
    });
    EXPECT_EQ(after - before, 0u);
}

TEST_F(PanoramaTest, PictureOfPanelsInAFlow) {
    file(
        "panels.xml",
        "<panorama><workspace><child><flow><area x='10' y='10' w='380' h='280'/><child>"
        "<panel caption='Sound'><area size='80'/></panel><panel><area percent='1'/></panel>"
        "<panel caption='Colours of the picture'><area percent='2'/><color name='text.color' first='ffe080'/>"
        "<color name='back.color' first='80c0ff' second='80c0ff30'/>"
        "<child><panel caption='Inside'><area x='10' y='5' w='150' h='70'/></panel>"
        "<panel caption='A caption that is longer than the panel'><area x='180' y='5' w='120' "
        "h='70'/></panel>"
        "</child></panel></child></flow></child></workspace></panorama>");
    toolkit->load("panels.xml");
    EXPECT_TRUE(matchesReference("panorama_panels", shown()));
}

// With a real mouse and keyboard.
class PersonTest : public PanoramaTest {
protected:
    // Before the toolkit in the display's list, like the show itself.
    struct Behind : display::Listener {
        int presses = 0, releases = 0, moves = 0, keys = 0;
        using Listener::Listener;
        int onMouseDown(const display::MouseButtonEvent&) override { return ++presses, WHATEVER; }
        int onMouseUp(const display::MouseButtonEvent&) override { return ++releases, WHATEVER; }
        int onMouseMove(const display::MouseMoveEvent&) override { return ++moves, WHATEVER; }
        int onKeyDown(const display::KeyEvent&) override { return ++keys, WHATEVER; }
    };
    Behind behind;
    Viewer viewer;

    PersonTest() : behind(&display()), viewer("test", [this] { display().update(); }) {
        toolkit->attachToDisplay(&display()); // after it again
        viewer.focus();
        viewer.moveTo(390, 290);
    }

    void click(int x, int y) {
        viewer.moveTo(x, y);
        viewer.click(1);
    }
};

TEST_F(PersonTest, AClickThatHitsAControlGoesNoFurtherAndOneOnTheBackgroundDoes) {
    Plain& control = add(Box2(20, 20, 120, 120));
    click(50, 50);
    click(300, 200);
    ASSERT_TRUE(viewer.until("the press on the background", [&] { return behind.releases == 1; }));
    EXPECT_EQ(behind.presses, 1);
    EXPECT_EQ(std::count(control.heard.begin(), control.heard.end(), "mousedown"), 1);
    EXPECT_EQ(std::count(control.heard.begin(), control.heard.end(), "mouseup"), 1);
    EXPECT_GT(behind.moves, 0);
}

TEST_F(PersonTest, AKeyGoesToTheFocusAndOnToTheNextUnlessTheFocusUsesKeys) {
    Plain& control = add(Box2(20, 20, 120, 120));
    TextInput* const field = new TextInput;
    field->mArea.area = Box2(200, 20, 300, 40);
    toolkit->addControl(field);
    click(50, 50);
    viewer.key("a");
    ASSERT_TRUE(viewer.until("the key",
                             [&] { return !control.heard.empty() && control.heard.back() == "keycharup"; }));
    EXPECT_EQ(std::count(control.heard.begin(), control.heard.end(), "keydown"), 1);
    EXPECT_EQ(std::count(control.heard.begin(), control.heard.end(), "keyup"), 1);
    EXPECT_EQ(std::count(control.heard.begin(), control.heard.end(), "keychardown"), 1);
    EXPECT_EQ(behind.keys, 1);
    click(250, 30);
    viewer.key("b");
    ASSERT_TRUE(viewer.until("the text", [&] { return field->getText() == "b"; }));
    EXPECT_EQ(behind.keys, 1);
    viewer.key("Tab"); // for everyone
    ASSERT_TRUE(viewer.until("Tab behind", [&] { return behind.keys == 2; }));
    click(300, 200);
    viewer.key("a");
    ASSERT_TRUE(viewer.until("the key behind", [&] { return behind.keys == 3; }));
}

TEST_F(PersonTest, TheWheelAndTheDoubleClickArrive) {
    struct Listening : Plain {
        float wheel = 0;
        bool doubled = false;
        int handleEvent(Event& event) override {
            if (event.type == "mousewheel")
                wheel += event.wheelDelta;
            doubled |= event.doubleClick;
            return Plain::handleEvent(event);
        }
    };
    Listening* control = new Listening;
    control->mArea.area = Box2(0, 0, 200, 200);
    toolkit->addControl(control);
    viewer.moveTo(100, 100);
    viewer.wheel(2);
    viewer.wheel(-3);
    ASSERT_TRUE(viewer.until("the wheel", [&] { return control->wheel == -1; }));
    viewer.click(1);
    viewer.click(1);
    EXPECT_TRUE(viewer.until("a double click", [&] { return control->doubled; }));
}

TEST_F(PersonTest, TheHoverStateFollowsTheMouse) {
    Plain& a = add(Box2(20, 20, 120, 120));
    Plain& b = add(Box2(200, 20, 300, 120));
    viewer.moveTo(50, 50);
    ASSERT_TRUE(viewer.until("the mouse over a", [&] { return a.mHover && !b.mHover; }));
    viewer.moveTo(250, 50);
    ASSERT_TRUE(viewer.until("the mouse over b", [&] { return !a.mHover && b.mHover; }));
    viewer.moveTo(250, 200);
    ASSERT_TRUE(viewer.until("the mouse over none", [&] { return !a.mHover && !b.mHover; }));
}

TEST(ResizeTest, AfterAResizeAllMaximizedControlsFillTheirParentsAgain) {
    am::ArchiveManager archives;
    archives.addArchive(sourcePath("data"));
    display::WindowMode mode("resizable", WIDTH, HEIGHT, false);
    mode.canResize = true;
    display::DisplayGL window(mode);
    window.setArchive(&archives);
    window.open();
    {
        Panorama toolkit(&window);
        Plain& a = *new Colored(Box2(20, 20, 120, 120));
        Plain& b = *new Colored;
        toolkit.addControl(&a);
        a.addControl(&b, -1);
        b.setMaximized(true);
        a.setMaximized(true);
        Viewer viewer("resizable", [&] { window.update(); });
        viewer.focus();
        viewer.dragCorner(60, 40);
        viewer.until("the new size", [&] {
            const Box2 whole(0, 0, float(window.mWindowMode.width), float(window.mWindowMode.height));
            return whole.x2 > WIDTH && whole.y2 > HEIGHT && toolkit.mWorkspace.getArea() == whole &&
                   a.getArea() == whole && b.getArea() == whole;
        });
    }
    window.close();
}

} // namespace
