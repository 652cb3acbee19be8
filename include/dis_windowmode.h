// What kind of window to open.
#pragma once

#include <string>

namespace zentrak::display {

struct WindowMode {
    std::string title;
    int width;    // pixels
    int height;   // pixels
    int bitdepth; // bits per pixel
    bool fullscreen;
    bool canResize; // by the viewer, with the mouse

    WindowMode() { setDefaults(); }
    WindowMode(const std::string& windowTitle, int windowWidth, int windowHeight, bool windowFullscreen) {
        setDefaults();
        title = windowTitle;
        width = windowWidth;
        height = windowHeight;
        fullscreen = windowFullscreen;
    }

    // "The Untitled Application", 800 by 600 at 32 bits, in a window of fixed size.
    void setDefaults() {
        title = "The Untitled Application";
        width = 800;
        height = 600;
        bitdepth = 32;
        fullscreen = false;
        canResize = false;
    }
};

} // namespace zentrak::display
