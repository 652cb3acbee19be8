// A real window for tests that draw, and what it shows as a picture. Link zentrak_gl_support, and run with
// GL.
#pragma once

#include "am_archivemanager.h"
#include "dis_display.h"
#include "picture.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace zentrak::test {

// A window that is open for as long as this object lives; one at a time. Frames aren't paced, and files come
// from data/ in the source tree.
//
//     GlWindow window(640, 400);
//     Effect effect; effect.mDisplay = &window.display(); effect.setup();
//     EXPECT_TRUE(matchesReference("effect", window.frame([&] { effect.update(1.0f, 0.02f, 0.5f); })));
class GlWindow {
public:
    explicit GlWindow(int width = 640, int height = 400); // the height is even
    ~GlWindow();
    GlWindow(const GlWindow&) = delete;
    GlWindow& operator=(const GlWindow&) = delete;

    display::DisplayGL& display() { return *mDisplay; }
    am::ArchiveManager& archives() { return mArchives; }

    // Runs one complete frame of the display, calling `draw` after the state reset, and returns what the
    // window shows at its end. With `clear` colour (to black) and depth are cleared first. Rethrows what
    // `draw` throws. Fails the running test if the window doesn't draw within 20 seconds.
    Picture frame(const std::function<void()>& draw, bool clear = true);

private:
    class Painter;

    am::ArchiveManager mArchives;
    std::unique_ptr<display::DisplayGL> mDisplay;
    std::unique_ptr<Painter> mPainter;
};

// A fixture for tests that need one window each: the first call of window() opens it.
class GlTest : public ::testing::Test {
protected:
    GlWindow& window(int width = 640, int height = 400);
    display::DisplayGL& display() { return window().display(); }
    Picture frame(const std::function<void()>& draw, bool clear = true) {
        return window().frame(draw, clear);
    }

private:
    std::unique_ptr<GlWindow> mWindow;
};

// The window's picture as drawn so far in this frame: for use inside onDraw, or the draw function of a frame.
Picture grabPicture(const display::DisplayGL& display);

Picture toPicture(const am::Image& image);

} // namespace zentrak::test
