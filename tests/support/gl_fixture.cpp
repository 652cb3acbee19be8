#include "gl_fixture.h"

#include "am_image.h"
#include "support.h"

#include <chrono>

namespace zentrak::test {

Picture grabPicture(const display::DisplayGL& display) {
    am::Image image(new am::ImageObject);
    image->resize(display.mWindowMode.width, display.mWindowMode.height);
    display.getScreenShot(image);
    return toPicture(image);
}

Picture toPicture(const am::Image& image) {
    Picture picture(image->getWidth(), image->getHeight());
    const unsigned char* bgra = image->getData();
    for (size_t i = 0; i < picture.rgba.size(); i += 4) {
        picture.rgba[i] = bgra[i + 2];
        picture.rgba[i + 1] = bgra[i + 1];
        picture.rgba[i + 2] = bgra[i];
        picture.rgba[i + 3] = bgra[i + 3];
    }
    return picture;
}

// Draws one frame on request.
class GlWindow::Painter : public display::Listener {
public:
    void onDraw() override {
        if (!draw)
            return;
        if (clear) {
            glClearColor(0, 0, 0, 0);
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        }
        (*draw)();
        picture = grabPicture(*display);
        drawn = true;
    }

    const std::function<void()>* draw = nullptr;
    bool clear = true;
    bool drawn = false;
    Picture picture;
};

GlWindow::GlWindow(int width, int height)
    : mDisplay(new display::DisplayGL(display::WindowMode("test", width, height, false))),
      mPainter(new Painter) {
    mArchives.addArchive(sourcePath("data"));
    mDisplay->setArchive(&mArchives);
    mPainter->attachToDisplay(mDisplay.get());
    mDisplay->open();
    mDisplay->setFps(display::DisplayGL::FPS_VARIABLE, 0);
}

GlWindow::~GlWindow() = default;

Picture GlWindow::frame(const std::function<void()>& draw, bool clear) {
    struct Asked {
        Painter& painter;
        ~Asked() { painter.draw = nullptr; }
    } asked{*mPainter};
    mPainter->draw = &draw;
    mPainter->clear = clear;
    mPainter->drawn = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!mPainter->drawn && std::chrono::steady_clock::now() < deadline)
        mDisplay->update();
    if (!mPainter->drawn) {
        ADD_FAILURE() << "the window did not get to draw";
        return Picture(mDisplay->mWindowMode.width, mDisplay->mWindowMode.height);
    }
    return mPainter->picture;
}

GlWindow& GlTest::window(int width, int height) {
    if (!mWindow)
        mWindow.reset(new GlWindow(width, height));
    return *mWindow;
}

} // namespace zentrak::test
