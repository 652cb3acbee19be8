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

// A window of its own for as long as it lives; there can be one at a time. Frames come as fast as they are
// drawn, and files come from the folder data/ of the source tree.
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

    // Runs one whole frame of the display, with `draw` after its reset of the states, and gives what the
    // window shows at its end. Nothing is cleared before `draw` unless `clear` is set: then to black, depth
    // included. What `draw` throws comes out. Fails the running test if the window does not get to draw
    // within 20 seconds.
    Picture frame(const std::function<void()>& draw, bool clear = true);

private:
    class Painter;

    am::ArchiveManager mArchives;
    std::unique_ptr<display::DisplayGL> mDisplay;
    std::unique_ptr<Painter> mPainter;
};

// The fixture of tests that need one window each: window() opens it at its first use.
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

} // namespace zentrak::test
