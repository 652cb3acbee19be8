// The effect in a real window: ./test runs this in show/.

#include "am_archivemanager.h"
#include "am_image.h"
#include "dis_display.h"
#include "petals.h"

#include <cstdio>
#include <exception>
#include <functional>
#include <limits>

using namespace zentrak;

namespace {

int failures = 0;

void check(bool right, const char* what) {
    std::printf("%s: %s\n", right ? "ok    " : "FAILED", what);
    failures += !right;
}

// A window that draws what it is given, and measures it.
class Window : public display::Listener {
public:
    Window() : mDisplay(display::WindowMode("test", 320, 200, false)) {
        mArchives.addArchive("./");
        mDisplay.setArchive(&mArchives);
        attachToDisplay(&mDisplay);
        mDisplay.open();
        mDisplay.setFps(display::DisplayGL::FPS_VARIABLE, 0);
    }

    // The mean brightness, 0 to 255, of one frame.
    float brightness(const std::function<void()>& draw) {
        mDraw = draw;
        mDrawn = false;
        while (!mDrawn && mDisplay.update()) {
        }
        return mBrightness;
    }

    void onDraw() override {
        mDisplay.resetStates();
        mDraw();
        am::Image picture(new am::ImageObject);
        picture->resize(320, 200);
        mDisplay.getScreenShot(picture);
        const unsigned char* bytes = picture->getData();
        long sum = 0;
        for (int i = 0; i < 320 * 200 * 4; ++i)
            sum += i % 4 == 3 ? 0 : bytes[i];
        mBrightness = float(sum) / (320 * 200 * 3);
        mDrawn = true;
    }

    display::DisplayGL mDisplay;

private:
    am::ArchiveManager mArchives;
    std::function<void()> mDraw;
    bool mDrawn = false;
    float mBrightness = 0;
};

void test() {
    Window window;
    Petals petals;
    petals.mDisplay = &window.mDisplay;
    petals.setup();
    const auto at = [&](float time, float delta) {
        return window.brightness([&] { petals.update(time, delta, 0.5f); });
    };

    check(at(1, 0.02f) == 0, "nothing is seen with an alpha of 0");
    petals.updateSpline(1, "alpha", 1);
    petals.updateSpline(1, "open", 1);
    const float open = at(1, 0.02f);
    check(open > 10, "an alpha of 1 shows it");

    petals.executeTrigger(1, "beat", "");
    check(at(1, 0) > open + 1, "a beat makes it brighter");
    check(at(2, 1) < open + 1, "and is over after a second");
    petals.executeTrigger(2, "no such thing", "");
    check(petals.getSwell() == 0, "other triggers do nothing");
    petals.executeTrigger(2, "beat", "");
    at(1, -1);
    check(petals.getSwell() == 1, "a jump back does not make it grow");
    at(std::numeric_limits<float>::quiet_NaN(), 0.02f);
    check(at(3, 0.02f) > 10, "a time that is not a number is survived");
}

} // namespace

int main() {
    try {
        test();
    } catch (const std::exception& error) {
        check(false, error.what());
    }
    return failures != 0;
}
