#include "studio_fixture.h"

#include <cmath>
#include <filesystem>

namespace zentrak::test {

using mathbase::Box2;
using mathbase::Vector2f;

StudioTest::StudioTest() {
    for (const auto& entry : std::filesystem::directory_iterator(sourcePath("data"))) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory() && name != "music")
            std::filesystem::create_symlink(entry.path(), mDir.file(name));
    }
    for (const char* name : {"layout.xml", "style.xml", "fonthelvete2.png", "sparks.png"})
        if (fileExists(sourcePath("data") + "/" + name))
            std::filesystem::copy_file(sourcePath("data") + "/" + name, mDir.file(name));
    writeFile(mDir.file("setup.xml"), "<demo><display width=\"1280\" height=\"800\" title=\"Show\"/>"
                                      "<script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    mScript = "<script>\n"
              "\t<tempo bpm=\"120\" beats=\"4\" start=\"0\"/>\n"
              "\t<!-- Opening -->\n"
              "\t<effect name=\"clear\" start=\"0\" end=\"20\">\n"
              "\t\t<trigger name=\"type\" value=\"flat\" start=\"0\"/>\n"
              "\t\t<trigger name=\"color\" value=\"white\" start=\"0\"/>\n"
              "\t</effect>\n"
              "\t<effect name=\"grid\" start=\"4\" end=\"10\">\n"
              "\t\t<spline name=\"alpha\" type=\"linear\">\n"
              "\t\t\t<key time=\"0\" value=\"0\"/>\n"
              "\t\t\t<key time=\"2\" value=\"1\"/>\n"
              "\t\t</spline>\n"
              "\t</effect>\n"
              "\t<!-- Rest -->\n"
              "\t<effect name=\"overlay\" start=\"12\" end=\"14\">\n"
              "\t</effect>\n"
              "</script>\n";
}

StudioTest::~StudioTest() {
    close();
}

studio::Window& StudioTest::window() {
    if (mWindow)
        return *mWindow;
    if (!fileExists(mDir.file("script.xml")) && !mScript.empty())
        writeFile(mDir.file("script.xml"), mScript);
    if (!mHere)
        mHere = std::make_unique<WorkingDir>(mDir.path());
    mShow = std::make_unique<studio::Show>();
    mShow->setup();
    mEditor = std::make_unique<studio::Editor>();
    mShow->open(mWidth, mHeight, "Studio");
    mWindow = std::make_unique<studio::Window>(*mShow, *mEditor);
    mShow->getDisplay().update();
    mViewer =
        std::make_unique<Viewer>("script.xml - Zentrak studio", [this] { mShow->getDisplay().update(); });
    mViewer->focus();
    return *mWindow;
}

Viewer& StudioTest::viewer() {
    window();
    return *mViewer;
}

void StudioTest::killed() {
    mViewer.reset();
    mWindow.reset();
    mEditor.reset();
    mShow.reset();
}

void StudioTest::close() {
    killed();
}

void StudioTest::frame() {
    show().getDisplay().update();
    show().getDisplay().update();
}

int StudioTest::element(const std::string& name, int nth) {
    const studio::Document& document = editor().getDocument();
    for (int i = 1; i < document.getSize(); ++i)
        if (document[i].name == name && nth-- == 0)
            return i;
    ADD_FAILURE() << "no " << name;
    return 1;
}

void StudioTest::moveTo(Vector2f place) {
    const Vector2f pixel = place * window().getScale();
    viewer().moveTo(int(pixel.x), int(pixel.y));
    until("the mouse", [&] {
        const display::DisplayGL& display = show().getDisplay();
        return int(display.mMouseX) == int(pixel.x) && int(display.mMouseY) == int(pixel.y);
    });
}

void StudioTest::click(Vector2f place, int button) {
    press(place, "click --delay 2 " + std::to_string(button));
}

// All of it in one call of the tool: most of the time of these tests is clicks.
void StudioTest::press(Vector2f place, const std::string& then) {
    const Vector2f pixel = place * window().getScale();
    const auto move = [&](int by) {
        return " mousemove --window " + viewer().window() + " " + std::to_string(int(pixel.x) + by) + " " +
               std::to_string(int(pixel.y) + by) + " ";
    };
    EXPECT_EQ(runCommand("timeout 60 xdotool" + move(1) + move(0) + then).first, 0);
    until("the mouse", [&] {
        const display::DisplayGL& display = show().getDisplay();
        return int(display.mMouseX) == int(pixel.x) && int(display.mMouseY) == int(pixel.y);
    });
    frame();
}

void StudioTest::doubleClick(Vector2f place) {
    press(place, "click --repeat 2 --delay 5 1");
}

Vector2f StudioTest::onRuler(double time) {
    return Vector2f(std::floor(timeline().toX(time)), timeline().getAxis().y1 - 10);
}

void StudioTest::showBars() {
    window();
    timeline().mScale = 20;
    timeline().mScrollTime = 0;
    frame();
}

Vector2f StudioTest::middle(int element) {
    const Box2 box = timeline().getElementBox(element);
    return Vector2f((box.x1 + box.x2) / 2, (box.y1 + box.y2) / 2);
}

void StudioTest::click(const std::string& name) {
    click(middle(element(name)));
}

void StudioTest::drag(Vector2f from, float dx, float dy, const std::string& held) {
    moveTo(from + Vector2f(1, 0));
    moveTo(from);
    const bool alt = held == "alt"; // window managers take a press with it
    if (!held.empty() && !alt)
        viewer().keyDown(held);
    viewer().buttonDown(1);
    if (alt)
        viewer().keyDown(held);
    for (int i = 1; i <= 4; ++i)
        moveTo(from + Vector2f(dx * float(i) / 4, dy * float(i) / 4));
    viewer().buttonUp(1);
    if (!held.empty())
        viewer().keyUp(held);
    until("the release", [&] { return !timeline().isDragging(); });
}

void StudioTest::choose(const std::string& label) {
    until(label, [&] { return overlay().getBox(label).getWidth() > 0; });
    const Box2 box = overlay().getBox(label);
    click(Vector2f((box.x1 + box.x2) / 2, (box.y1 + box.y2) / 2));
}

void StudioTest::leaveBy(const std::string& label) {
    until(label, [&] { return overlay().getBox(label).getWidth() > 0; });
    const Box2 box = overlay().getBox(label);
    moveTo(Vector2f((box.x1 + box.x2) / 2, (box.y1 + box.y2) / 2));
    bool left = false;
    Viewer watching("", [&] { left = left || !show().getDisplay().update(); });
    viewer().click(1);
    watching.until("the end", [&] { return left; });
}

Picture StudioTest::picture() {
    frame();
    const std::string path = mDir.file(".grab.png");
    Picture picture;
    EXPECT_EQ(runCommand("import -silent -window " + viewer().window() + " '" + path + "'").first, 0);
    EXPECT_TRUE(readPng(path, picture));
    return picture;
}

void StudioTest::copyFolder(const std::string& name) {
    std::filesystem::remove(mDir.file(name));
    std::filesystem::copy(sourcePath("data/" + name), mDir.file(name));
}

std::string StudioTest::breakAndMend(const std::string& file, const std::string& bad,
                                     const std::string& named, const std::function<void()>& meanwhile) {
    window();
    EXPECT_TRUE(window().getErrors().empty());
    const std::string good = readFile(mDir.file(file));
    writeFile(mDir.file(file), bad);
    until("the error", [&] { return !window().getErrors().empty(); });
    std::string error;
    for (const std::string& line : window().getErrors())
        error += line + "\n";
    EXPECT_NE(error.find(named), std::string::npos) << error;
    meanwhile();
    writeFile(mDir.file(file), good);
    until("no error", [&] { return window().getErrors().empty(); });
    return error;
}

} // namespace zentrak::test
