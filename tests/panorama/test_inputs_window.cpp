// Input controls in a window: measured text, glides, and drawing hostile content.
#include "allocations.h"
#include "gl_fixture.h"
#include "glfw2.h"
#include "pan_button.h"
#include "pan_checkbox.h"
#include "pan_dropdown.h"
#include "pan_image.h"
#include "pan_interval.h"
#include "pan_label.h"
#include "pan_panorama.h"
#include "pan_slider.h"
#include "pan_spline.h"
#include "pan_stat.h"
#include "pan_textinput.h"
#include "pan_treeview.h"
#include "support.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;
using test::ENDLESS;
using test::NO_NUMBER;
using test::Picture;

namespace {

constexpr int WIDTH = 400, HEIGHT = 300;

class InputsWindow : public ::testing::Test {
protected:
    test::GlWindow mWindow;
    Panorama mPanorama;

    InputsWindow() : mWindow(WIDTH, HEIGHT), mPanorama(&mWindow.display()) {
        mWindow.archives().addArchive(test::sourcePath("tests/data/panorama"));
    }

    Render& render() { return mPanorama.mWorkspace.mRender; }

    template <class Type>
    Type* add(const Box2& area) {
        Type* control = new Type;
        mPanorama.addControl(control);
        control->setArea(area);
        return control;
    }

    Picture frame() {
        return mWindow.frame([this] { mPanorama.onDraw(); });
    }

    void mouse(const char* type, float x, float y, bool doubleClick = false, int modifiers = 0) {
        Event event;
        event.type = type;
        event.mousePos = Vector2f(x, y);
        event.doubleClick = doubleClick;
        event.control = modifiers;
        mPanorama.mWorkspace.handleEvent(event);
    }
    void press(float x, float y, bool doubleClick = false, int modifiers = 0) {
        mouse("mousemove", x, y);
        mouse("mousedown", x, y, doubleClick, modifiers);
    }

    // The smallest box around the pixels that are brighter than half, within a box.
    static Box2 brightBox(const Picture& picture, const Box2& within) {
        Box2 box(1e9f, 1e9f, -1, -1);
        for (int y = int(within.y1); y < int(within.y2); ++y)
            for (int x = int(within.x1); x < int(within.x2); ++x)
                if (picture.at(x, y)[1] > 128)
                    box = Box2(std::min(box.x1, float(x)), std::min(box.y1, float(y)),
                               std::max(box.x2, float(x + 1)), std::max(box.y2, float(y + 1)));
        return box;
    }
    static bool blank(const Picture& picture) {
        for (size_t i = 0; i < picture.rgba.size(); ++i)
            if (i % 4 != 3 && picture.rgba[i])
                return false;
        return true;
    }
};

// Time for the glides.
void setTime(double time) {
    glfw2::glfwSetTime(time);
}

} // namespace

TEST_F(InputsWindow, AGlideIsAQuarterOfASine) {
    Interval interval;
    EXPECT_EQ(interval.get(false), 0.0f);
    setTime(100);
    interval.set(2, false);
    EXPECT_NEAR(interval.get(false), 0.0f, 0.02f); // starts at the first call
    setTime(100.15);
    EXPECT_NEAR(interval.get(false), 2 * std::sin(3.1415927 * 0.25), 0.03f);
    EXPECT_EQ(interval.get(true), 2.0f);
    setTime(100.31);
    EXPECT_EQ(interval.get(false), 2.0f);
}

TEST_F(InputsWindow, AGlideStartsAtTheValueLastReturned) {
    Interval interval;
    setTime(100);
    interval.set(1, false);
    interval.get(false);
    setTime(100.15);
    const float seen = interval.get(false);
    interval.set(0, false);
    EXPECT_NEAR(interval.get(false), seen, 0.03f);
    interval.set(5, true);
    EXPECT_EQ(interval.get(false), 5.0f);
    interval.set(6, false);
    EXPECT_NEAR(interval.get(false), 5.0f, 0.1f);
}

TEST_F(InputsWindow, TheSpeedIsTheInverseOfTheDuration) {
    Interval interval;
    EXPECT_EQ(interval.mDuration, 0.3f);
    for (const float ignored : {0.0f, -1.0f, NO_NUMBER, -ENDLESS}) {
        interval.setSpeed(ignored);
        EXPECT_EQ(interval.mDuration, 0.3f);
    }
    interval.setSpeed(0.1f);
    EXPECT_EQ(interval.mDuration, 10.0f);
    setTime(100);
    interval.set(1, false);
    interval.get(false);
    setTime(105);
    EXPECT_NEAR(interval.get(false), std::sin(3.1415927 * 0.25), 0.01f);
    interval.setSpeed(ENDLESS);
    interval.set(3, false);
    EXPECT_EQ(interval.get(false), 3.0f);
}

TEST_F(InputsWindow, AClockThatIsSetBackEndsAGlide) {
    Interval interval;
    setTime(1000);
    interval.set(1, false);
    interval.get(false);
    setTime(10);
    EXPECT_EQ(interval.get(false), 1.0f);
}

TEST_F(InputsWindow, ASliderIsHitWhereItsHandleIsDrawn) {
    Slider* slider = add<Slider>(Box2(10, 10, 216, 26));
    slider->mDirection = 0;
    setTime(100);
    slider->setValue(1, false);
    mouse("mousemove", 13, 18); // the handle starts to move
    EXPECT_EQ(slider->mHoverAmount, 1.0f);
    EXPECT_EQ(slider->getValue(), 1.0f);
    setTime(100.5);
    mouse("mousemove", 14, 18);
    EXPECT_EQ(slider->mHoverAmount, 0.0f);
    mouse("mousemove", 213, 18);
    EXPECT_EQ(slider->mHoverAmount, 1.0f);
}

TEST_F(InputsWindow, ATextThatIsTooLongEndsInDots) {
    TextLine line;
    const float dots = 3 * render().getAdvance('.');
    line.set("Hello");
    const float whole = render().getTextLength("Hello");
    EXPECT_EQ(line.fit(render(), whole), "Hello");
    EXPECT_EQ(line.getLength(), whole);
    EXPECT_EQ(line.fit(render(), whole - 1), "Hel...");
    EXPECT_EQ(line.getLength(), render().getTextLength("Hel..."));
    EXPECT_EQ(line.fit(render(), dots), "...");
    EXPECT_EQ(line.fit(render(), dots - 1), "");
    EXPECT_EQ(line.fit(render(), 0), "");
    EXPECT_EQ(line.fit(render(), NO_NUMBER), "");
    EXPECT_EQ(line.fit(render(), -ENDLESS), "");
    EXPECT_EQ(line.fit(render(), ENDLESS), "Hello");
    line.set(std::string(1000000, 'm'));
    EXPECT_LT(line.fit(render(), 200).size(), 40u);
}

TEST_F(InputsWindow, LabelsStandInTheirBoxesInBothDirections) {
    const TextLine::Align aligns[] = {TextLine::START, TextLine::MIDDLE, TextLine::END};
    for (const TextLine::Align across : aligns) {
        for (const TextLine::Align down : aligns) {
            mPanorama.mWorkspace.deleteControls();
            Label* label = add<Label>(Box2(100, 100, 200, 140));
            label->setText("HEH");
            label->mAlign = across;
            label->mVAlign = down;
            const Box2 seen = brightBox(frame(), Box2(0, 0, 400, 300));
            const float left = seen.x1 - 100, right = 200 - seen.x2, top = seen.y1 - 100,
                        bottom = 140 - seen.y2;
            EXPECT_EQ(seen.getHeight(), 9.0f);
            if (across == TextLine::MIDDLE)
                EXPECT_NEAR(left, right, 1.0f);
            else
                EXPECT_LE(across == TextLine::START ? left : right, 2.0f);
            if (down == TextLine::MIDDLE)
                EXPECT_NEAR(top, bottom, 1.0f);
            else
                EXPECT_LE(down == TextLine::START ? top : bottom, 4.0f);
        }
    }
}

TEST_F(InputsWindow, TheCaptionOfAButtonIsCentred) {
    for (const float height : {20.0f, 21.0f, 22.0f, 33.0f}) {
        mPanorama.mWorkspace.deleteControls();
        Button* button = add<Button>(Box2(50, 50, 150, 50 + height));
        button->setCaption("HHHH");
        const Box2 seen = brightBox(frame(), Box2(52, 52, 148, 48 + height));
        EXPECT_NEAR(seen.x1 - 50, 150 - seen.x2, 1.0f);
        EXPECT_NEAR(seen.y1 - 50, 50 + height - seen.y2, 1.0f);
    }
}

TEST_F(InputsWindow, TheMousePlacesTheCaretSelectsAndTakesWords) {
    TextInput* input = add<TextInput>(Box2(10, 10, 210, 30));
    const float left = 14; // of the text
    const auto at = [&](const char* text) { return left + render().getTextLength(text); };
    input->setText("one two three");
    press(at("one"), 20);
    EXPECT_EQ(input->getCaret(), 3u);
    EXPECT_EQ(input->getAnchor(), 3u);
    mouse("mousemove", at("one two"), 20);
    EXPECT_EQ(input->getSelection(), " two");
    mouse("mousemove", at("on"), 250); // also outside
    EXPECT_EQ(input->getSelection(), "e");
    EXPECT_EQ(input->getCaret(), 2u);
    mouse("mouseup", at("on"), 250);
    mouse("mousemove", at("one two"), 20);
    EXPECT_EQ(input->getSelection(), "e");

    press(at("one two"), 20, false, display::KEYMOD_RSHIFT);
    mouse("mouseup", 0, 0);
    EXPECT_EQ(input->getSelection(), " two"); // from where the last press was
    press(at("one t") + 1, 20, true);
    mouse("mousemove", at("one tw"), 20);
    mouse("mouseup", 0, 0);
    EXPECT_EQ(input->getSelection(), "two");
    press(205, 20);
    EXPECT_EQ(input->getCaret(), 13u);
    press(11, 20);
    EXPECT_EQ(input->getCaret(), 0u);
    press(at("o") - 1, 20); // the nearer side of a character
    EXPECT_EQ(input->getCaret(), 1u);
}

TEST_F(InputsWindow, AnOverlongTextScrollsWithTheCaret) {
    TextInput* input = add<TextInput>(Box2(10, 10, 110, 30));
    input->setText("H" + std::string(200, ' ') + std::string(200, ' ') + "H");
    input->takeKeys();
    mWindow.display().setFps(display::DisplayGL::FPS_DELTA, 1e6f); // the caret does not blink
    const Box2 inside(12, 12, 108, 28);
    input->select(0, 0);
    EXPECT_NEAR(brightBox(frame(), inside).x1, 14.0f, 2.0f);
    input->select(402, 402);
    EXPECT_NEAR(brightBox(frame(), inside).x2, 106.0f, 2.0f);
    press(20, 20);
    mouse("mouseup", 20, 20);
    EXPECT_GT(input->getCaret(), 350u);
}

TEST_F(InputsWindow, APictureKeepsItsProportionsAndIsCentred) {
    Image* image = add<Image>(Box2(100, 50, 300, 250));
    EXPECT_TRUE(image->setFilename("white.png")); // 8 by 4
    EXPECT_EQ(brightBox(frame(), Box2(0, 0, 400, 300)), Box2(100, 100, 300, 200));
    image->setArea(Box2(100, 50, 300, 80));
    EXPECT_EQ(brightBox(frame(), Box2(0, 0, 400, 300)), Box2(170, 50, 230, 80));
    image->setArea(Box2(100, 50, 100, 50));
    EXPECT_TRUE(blank(frame()));
}

TEST_F(InputsWindow, APictureThatIsMissingOrDamagedIsAFrame) {
    test::TempDir folder;
    mWindow.archives().addArchive(folder.path());
    const std::string whole = test::readFile(test::sourcePath("tests/data/panorama/picture.png"));
    test::writeFile(folder.file("cut.png"), whole.substr(0, whole.size() / 3));
    test::writeFile(folder.file("empty.png"), "");
    test::writeFile(folder.file("noise.png"), std::string(1000, '\x9d'));
    test::writeFile(folder.file("text.txt"), "no picture");
    Image* image = add<Image>(Box2(100, 100, 200, 200));
    for (const char* name : {"missing.png", "cut.png", "empty.png", "noise.png", "text.txt", ""}) {
        test::CaptureStdout capture;
        image->setFilename(name);
        if (std::string(name) != "cut.png") { // which may be shown in part
            EXPECT_FALSE(image->hasPicture()) << name;
        }
        EXPECT_FALSE(blank(frame())) << name;
    }
    EXPECT_TRUE(image->setFilename("picture.png"));
    frame();
    Image alone; // without a display
    EXPECT_FALSE(alone.setFilename("picture.png"));
}

TEST_F(InputsWindow, ZeroSizedNegativeAndEnormousControlsAreDrawn) {
    for (const Box2 area :
         {Box2(), Box2(10, 10, 10, 10), Box2(10, 10, 11, 11), Box2(50, 50, 20, 20), Box2(10, 10, 13, 200),
          Box2(10, 10, 200, 13), Box2(-1e6f, -1e6f, 1e6f, 1e6f), Box2(0.3f, 0.7f, 100.2f, 20.9f)}) {
        mPanorama.mWorkspace.deleteControls();
        add<Button>(area)->setCaption("Caption");
        add<Label>(area)->setText("Text");
        add<Slider>(area)->mDirection = 0;
        add<Slider>(area)->setValue(0.5f, true);
        TextInput* input = add<TextInput>(area);
        input->setText("Text");
        input->select(0, 4);
        input->takeKeys();
        Dropdown* dropdown = add<Dropdown>(area);
        dropdown->addOption("1", "One");
        Checkbox* check = add<Checkbox>(area);
        check->addOption("One", true);
        RadioButton* radio = add<RadioButton>(area);
        radio->addOption("One", true);
        TreeView* tree = add<TreeView>(area);
        tree->addItem(tree->addItem(-1, "", "One"), "", "Two");
        tree->setOpen(0, true);
        Stat* stat = add<Stat>(area);
        stat->addValue(3);
        stat->addValue(-3);
        add<Image>(area)->setFilename("picture.png");
        frame();
        press(12, 12);
        mouse("mouseup", 12, 12);
        mouse("mousewheel", 12, 12);
        dropdown->open();
        frame();
        mPanorama.mWorkspace.resetContext();
    }
}

TEST_F(InputsWindow, OnlyTheVisiblePartOfATextOfAMegabyteIsDrawn) {
    const std::string text(1000000, 'W');
    Label* label = add<Label>(Box2(0, 0, 100, 20));
    label->setText(text);
    label->mAlign = TextLine::END;
    add<Button>(Box2(0, 30, 100, 50))->setCaption(text);
    TextInput* input = add<TextInput>(Box2(0, 60, 100, 80));
    input->setText(text);
    input->select(400000, 500000);
    Dropdown* dropdown = add<Dropdown>(Box2(0, 90, 100, 110));
    dropdown->addOption("", text);
    add<Checkbox>(Box2(0, 120, 100, 160))->addOption(text, true);
    TreeView* tree = add<TreeView>(Box2(200, 0, 300, 100));
    tree->addItem(-1, "", text);
    tree->setCaption(text);
    frame();
    tree->setScroll(true, 1e9f);
    EXPECT_LT(tree->getScroll(true), TreeView::LONGEST);
    dropdown->open();
    frame();
    size_t count = 0;
    mWindow.frame([&] {
        mPanorama.onDraw();
        const size_t before = test::allocationCount();
        mPanorama.onDraw();
        count = test::allocationCount() - before;
    });
    EXPECT_EQ(count, 0u);
}

TEST_F(InputsWindow, ControlBytesInTextAreDrawn) {
    std::string all;
    for (int c = 0; c < 256; ++c)
        all += char(c);
    Label* label = add<Label>(Box2(0, 0, 400, 20));
    label->setText(all);
    EXPECT_EQ(label->getText().size(), 256u);
    add<Button>(Box2(0, 30, 400, 50))->setCaption(all);
    add<TextInput>(Box2(0, 60, 400, 80))->setText(all);
    add<Checkbox>(Box2(0, 90, 400, 130))->addOption(all, true);
    add<Dropdown>(Box2(0, 140, 400, 160))->addOption(all, all);
    add<TreeView>(Box2(0, 170, 400, 300))->addItem(-1, all, all);
    EXPECT_FALSE(blank(frame()));
}

TEST_F(InputsWindow, AGraphOfAnythingIsDrawn) {
    Stat* stat = add<Stat>(Box2(0, 0, 200, 100));
    frame();
    for (const float value :
         {NO_NUMBER, ENDLESS, -ENDLESS, 0.0f, std::numeric_limits<float>::max(),
          std::numeric_limits<float>::lowest(), std::numeric_limits<float>::denorm_min()}) {
        stat->addValue(value);
        frame();
    }
}

TEST_F(InputsWindow, TheExampleOfTheDocumentationLoads) {
    const std::string page = test::readFile(test::sourcePath("docs/formats.md"));
    test::TempDir folder;
    size_t at = page.find("## Layout and style files");
    ASSERT_NE(at, std::string::npos);
    for (const char* name : {"layout.xml", "style.xml"}) {
        at = page.find("```xml\n", at) + 7;
        const size_t end = page.find("```", at);
        test::writeFile(folder.file(name), page.substr(at, end - at));
        at = end + 3;
    }
    am::ArchiveManager archives;
    archives.addArchive(folder.path());
    mWindow.display().setArchive(&archives);
    mPanorama.load("layout.xml");
    mWindow.display().setArchive(&mWindow.archives());
    Slider* slider = dynamic_cast<Slider*>(mPanorama.mWorkspace.findControl("speed"));
    Button* button = dynamic_cast<Button*>(mPanorama.mWorkspace.findControl("start"));
    ASSERT_TRUE(slider && button);
    EXPECT_EQ(slider->getValue(), 2.0f);
    EXPECT_EQ(button->getCaption(), "Start");
    EXPECT_NEAR(button->mBack.color.first.x, 0x90 / 255.0f, 1e-6f);
    EXPECT_FALSE(blank(frame()));
}

// The number of points in a pixel overflows.
TEST_F(InputsWindow, ACurveInAnExtremelyNarrowWidgetIsDrawn) {
    Spline& narrow = *add<Spline>(Box2(0, 50, 1e-38f, 150));
    narrow.setSpline(new Spline::SplineBase, true);
    Spline::Key key;
    narrow.mSpline->addKey(key);
    ASSERT_GT(narrow.getArea().getWidth(), 0);
    frame();
    EXPECT_GT(narrow.mPoints.size(), 1u); // the curve was not left out
}

TEST_F(InputsWindow, AFrameAllocatesNothingOnceWarm) {
    mPanorama.load("gallery.xml");
    Stat* stat = static_cast<Stat*>(mPanorama.mWorkspace.findControl("rate"));
    Label* label = add<Label>(Box2(0, 0, 100, 20));
    ASSERT_NE(stat, nullptr);
    for (int i = 0; i < 4; ++i) {
        stat->addValue(float(i));
        label->setText(i % 2 ? "59.94" : "60.06");
        frame();
    }
    size_t count = 0;
    mWindow.frame([&] {
        mPanorama.onDraw();
        const size_t before = test::allocationCount();
        stat->addValue(3);
        label->setText("60.01");
        mPanorama.onDraw();
        count = test::allocationCount() - before;
    });
    EXPECT_EQ(count, 0u);
}
