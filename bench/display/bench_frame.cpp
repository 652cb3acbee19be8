// The overhead of a frame: an empty frame step compared with the bare buffer swap, and the state reset with
// and without a check after each call. Run it as tests/with_display build/bench/bench/display/bench_frame
#include "dis_display.h"
#include "dis_glcheck.h"
#include "glfw2.h"

#include <benchmark/benchmark.h>
#include <memory>

using namespace zentrak;
using namespace zentrak::display;

namespace {

// A listener that does nothing.
class Still : public Listener {
    void onDraw() override {}
};

class Window {
public:
    Window() : display(WindowMode("bench", 640, 400, false)) {
        for (Still& listener : listeners)
            listener.attachToDisplay(&display);
        display.open();
        display.setFps(DisplayGL::FPS_VARIABLE, 0);
        for (int frame = 0; frame < 10; ++frame)
            display.update();
    }

    DisplayGL display;
    Still listeners[3];
};

void wholeFrameStep(benchmark::State& state) {
    Window window;
    for (auto _ : state)
        window.display.update();
}
BENCHMARK(wholeFrameStep);

void bareSwap(benchmark::State& state) {
    Window window;
    for (auto _ : state)
        glfw2::glfwSwapBuffers();
}
BENCHMARK(bareSwap);

void pollEvents(benchmark::State& state) {
    Window window;
    for (auto _ : state)
        glfw2::glfwPollEvents();
}
BENCHMARK(pollEvents);

void resetAllStates(benchmark::State& state) {
    Window window;
    for (auto _ : state)
        window.display.resetAllStates();
}
BENCHMARK(resetAllStates);

void resetAllStatesUnchecked(benchmark::State& state) {
    Window window;
    DisplayGL& display = window.display;
    mathbase::MatrixGL matrix, identity;
    identity.setIdentity();
    const auto loadModelView = [&] {
        mathbase::MatrixGL modelView = display.mCameraMatrix;
        modelView.multiplyFromRight(display.mTransformMatrix);
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixf(modelView.mData);
    };
    for (auto _ : state) {
        glPopAttrib();
        glPushAttrib(0xFFFFF);
        glMatrixMode(GL_TEXTURE);
        glLoadIdentity();
        display.mCameraMatrix = identity;
        loadModelView();
        display.mTransformMatrix = identity;
        loadModelView();
        matrix.setProject(0.7853982f, 1.6f, 0.1f, 5000.0f);
        glMatrixMode(GL_PROJECTION);
        glLoadMatrixf(matrix.mData);
        glShadeModel(GL_SMOOTH);
        glClearDepth(1.0f);
        glDisable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
        glDisable(GL_LIGHTING);
        glColor4f(1.0f, 1.0f, 1.0f, 0.5f);
        glDisable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDisable(GL_TEXTURE_2D);
        glViewport(0, 0, 640, 400);
    }
}
BENCHMARK(resetAllStatesUnchecked);

void oneCheck(benchmark::State& state) {
    Window window;
    for (auto _ : state)
        GL_REPORT_ERROR("bench_frame.cpp", 1, "glDepthFunc(GL_LEQUAL)");
}
BENCHMARK(oneCheck);

void screenShot(benchmark::State& state) {
    Window window;
    std::unique_ptr<unsigned char[]> buffer(new unsigned char[640 * 400 * 3]);
    for (auto _ : state)
        window.display.getScreenShotRGB24(buffer.get());
}
BENCHMARK(screenShot)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
