// The GUI toolkit with a tree of 2,000 controls: windows with scroll bars around buttons and sliders, a menu
// bar and an open menu.
//     tests/with_display build/bench/bench/panorama/bench_toolkit [ROUNDS]
// from the root of the source tree. First layout and a mouse move; then drawing, compared with the same tree
// drawn by one call per vertex, alternating within one run; fails if the pictures differ. By the clock
// up to the last pixel, by processor time over all threads, and by that of the calling thread, without the
// driver's threads that fill pixels. Then the same with GL_RASTERIZER_DISCARD, which leaves the cost of
// getting the shapes to the rasteriser. Medians.
#include "../measure.h"
#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "pan_button.h"
#include "pan_context.h"
#include "pan_controlfactory.h"
#include "pan_flow.h"
#include "pan_layoutstack.h"
#include "pan_menubar.h"
#include "pan_scrollbars.h"
#include "pan_slider.h"
#include "pan_window.h"
#include "pan_workspace.h"
#include "plain_render.h"
#include "xml_parser.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr int WIDTH = 1280, HEIGHT = 800;
constexpr int COLUMNS = 5, ROWS = 2; // of windows
constexpr int CELLS_ACROSS = 6, CELLS_DOWN = 33;
constexpr double MOST_DIFFERING = 0.002; // share of pixels

// A root that draws either way.
class Root : public Workspace {
public:
    test::PlainRender mPlain;
    bool mUsePlain = false;

    Render* getRender() override { return mUsePlain ? &mPlain : Workspace::getRender(); }

    void use(bool plain) {
        mUsePlain = plain;
        forgetRender(*this);
    }
    void drawFrame() {
        getRender()->setupDraw(Vector2f(WIDTH, HEIGHT), Vector2f(), 0);
        draw();
        getRender()->flush();
    }

private:
    static void forgetRender(Control& control) {
        control.mRender = nullptr;
        for (Control* child : control.mControls)
            forgetRender(*child);
    }
};

template <class T>
T& add(Control& parent, const Box2& area, const std::string& caption) {
    T* control = new T;
    control->mArea.area = area;
    parent.addControl(control, -1);
    control->setCaption(caption);
    return *control;
}

void fillWindow(Control& view, int window) {
    for (int i = 0; i < CELLS_ACROSS * CELLS_DOWN; ++i) {
        const float x = 2.0f + 39.0f * float(i % CELLS_ACROSS), y = 2.0f + 17.0f * float(i / CELLS_ACROSS);
        const Box2 area(x, y, x + 37, y + 15);
        const std::string number = std::to_string(window * 100 + i);
        switch (i % 3) {
        case 0:
            add<Button>(view, area, number);
            break;
        case 1:
            add<Button>(view, area, "b" + number);
            break;
        default:
            add<Slider>(view, area, number).mDirection = 0;
            break;
        }
    }
}

void buildTree(Root& root) {
    Menubar& bar = add<Menubar>(root, Box2(0, 0, WIDTH, HEIGHT), "bar");
    bar.setMaximized(true);
    for (const char* caption : {"file", "edit", "view", "window", "help"}) {
        Menubar::ContextData* menu = new Menubar::ContextData;
        menu->setCaption(caption);
        for (int i = 0; i < 20; ++i)
            menu->addOption(caption + std::string(" ") + std::to_string(i), "");
        bar.mMenus.push_back(menu);
    }
    for (int i = 0; i < COLUMNS * ROWS; ++i) {
        const float x = 4.0f + 255.0f * float(i % COLUMNS), y = 2.0f + 388.0f * float(i / COLUMNS);
        Window& window = add<Window>(bar, Box2(x, y, x + 250, y + 380), "window " + std::to_string(i));
        fillWindow(add<Scrollbars>(window, Box2(), "view"), i);
    }
    bar.mActive = 2;
    bar.mOpen = true;
    bar.setMenuContext(bar.mMenus[2]);
    root.mContext->mHighlight = 3;
}

int countControls(const Control& control) {
    int count = 1;
    for (const Control* child : control.mControls)
        count += countControls(*child);
    return count;
}

FILE* results;

// Milliseconds of processor time.
double measure(int rounds, const std::function<void(int)>& work) {
    bench::Times times;
    for (int i = 0; i < rounds; ++i)
        times.add([&] { work(i); });
    return bench::median(times.processor);
}

void drawOnce(Root& root, bool plain, bench::Times& times) {
    root.use(plain);
    glDisable(GL_SCISSOR_TEST);
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
    times.add([&] {
        root.drawFrame();
        glFinish();
    });
}

std::vector<unsigned char> grab() {
    std::vector<unsigned char> pixels(size_t(WIDTH) * HEIGHT * 4);
    glReadPixels(0, 0, WIDTH, HEIGHT, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

// The share of pixels that differ by more than a tenth of the range.
double difference(Root& root) {
    bench::Times ignored;
    drawOnce(root, true, ignored);
    const std::vector<unsigned char> plain = grab();
    drawOnce(root, false, ignored);
    const std::vector<unsigned char> batched = grab();
    size_t differing = 0;
    for (size_t i = 0; i < plain.size(); i += 4) {
        int most = 0;
        for (size_t channel = 0; channel < 3; ++channel)
            most = std::max(most, std::abs(int(plain[i + channel]) - int(batched[i + channel])));
        differing += most > 24;
    }
    return double(differing) / double(plain.size() / 4);
}

void compareDrawing(Root& root, int rounds, const char* name) {
    bench::Times plain, batched;
    for (int i = 0; i < rounds; ++i) {
        drawOnce(root, true, plain);
        drawOnce(root, false, batched);
    }
    std::fprintf(results, "%-32s", name);
    for (const auto clock : {&bench::Times::wall, &bench::Times::processor, &bench::Times::thread}) {
        const double one = bench::median(plain.*clock), other = bench::median(batched.*clock);
        std::fprintf(results, " %8.2f %8.2f %5.1fx", one, other, one / other);
    }
    std::fprintf(results, "\n");
}

// A layout of so many buttons in a container of this type; deleted again.
void loadButtons(const char* type, int count) {
    std::string text = std::string("<panorama><") + type + "><child>";
    for (int i = 0; i < count; ++i)
        text += "<button/>";
    xml::XmlParser document;
    document.parse(text + "</child></" + type + "></panorama>");
    xml::IteratorConst it = static_cast<const xml::XmlParser&>(document).createIterator(type);
    ++it;
    Workspace root;
    root.setArea(Box2(0, 0, WIDTH, HEIGHT));
    Control* const container = controlFactory.create(type);
    root.addControl(container, -1);
    container->load(it);
}

void measureButtons() {
    for (Control* prototype :
         std::initializer_list<Control*>{new Button, new Flow, new LayoutStack, new Scrollbars})
        controlFactory.addControlType(prototype);
    for (const char* type : {"flow", "layoutstack", "scrollbar"})
        for (const int count : {25000, 100000})
            std::fprintf(results, "%-32s %8.1f\n", (std::to_string(count) + " buttons in a " + type).c_str(),
                         measure(1, [&](int) { loadButtons(type, count); }));
}

} // namespace

int main(int count, char** arguments) {
    results = bench::separateResults();
    const int rounds = bench::roundsOf(count, arguments, 31);
    measureButtons();
    am::ArchiveManager archives;
    archives.addArchive("data");
    display::DisplayGL window(display::WindowMode("bench", WIDTH, HEIGHT, false));
    window.setArchive(&archives);
    window.open();
    window.resetAllStates();
    {
        Root root;
        root.setDisplay(&window);
        root.mPlain.setup(&window);
        root.setArea(Box2(0, 0, WIDTH, HEIGHT));
        buildTree(root);
        std::fprintf(results,
                     "%s, %d controls at %d x %d, median of %d rounds, milliseconds of processor time\n",
                     glGetString(GL_RENDERER), countControls(root), WIDTH, HEIGHT, rounds);

        std::fprintf(results, "%-32s %8.3f\n", "layout of the whole tree", measure(rounds, [&](int i) {
                         root.setArea(Box2(0, 0, WIDTH - float(i % 2), HEIGHT - float(i % 2)));
                     }));
        root.setArea(Box2(0, 0, WIDTH, HEIGHT));

        Context* const menu = root.mContext;
        const auto move = [&](float x, float y) {
            Event event;
            event.type = "mousemove";
            event.mousePos = Vector2f(x, y);
            root.handleEvent(event);
        };
        const auto sweep = [&](int) {
            for (int i = 0; i < 100; ++i)
                move(float(i * 12 % WIDTH), float(i * 7 % HEIGHT));
        };
        std::fprintf(results, "%-32s %8.4f\n", "a mouse move, a menu open", measure(rounds, sweep) / 100);
        root.resetContext();
        std::fprintf(results, "%-32s %8.4f\n", "a mouse move", measure(rounds, sweep) / 100);

        Context rows;
        for (int i = 0; i < 10000; ++i)
            rows.addOption("row " + std::to_string(i), "");
        rows.setPosition(Vector2f(20, -70000));
        root.setContext(&rows);
        std::fprintf(results, "%-32s %8.4f\n", "a mouse move on 10,000 rows", measure(rounds, sweep) / 100);
        std::fprintf(results, "%-32s %8.3f\n", "10,000 rows measured again",
                     measure(rounds, [&](int) { rows.resize(); }));
        rows.setPosition(Vector2f(20, -70000));

        std::fprintf(results, "%-32s %24s %24s %24s\n", "drawing: plain, batched, ratio", "by the clock",
                     "processor time", "of the calling thread");
        compareDrawing(root, rounds, "with 10,000 rows open");
        root.setContext(menu);
        compareDrawing(root, rounds, "with a menu open");
        const double differing = difference(root);
        std::fprintf(results, "%-32s %8.4f\n", "share of pixels that differ", differing);
        if (differing > MOST_DIFFERING)
            return 1;
        glEnable(GL_RASTERIZER_DISCARD);
        compareDrawing(root, rounds, "without pixels");
        glDisable(GL_RASTERIZER_DISCARD);
    }
    return 0;
}
