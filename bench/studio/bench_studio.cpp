// What the studio takes of a frame at 1280x800 over 500 spans and 2,000 splines, in one run:
//     tests/with_display build/bench/bench/studio/bench_studio [FRAMES]
// Each line is one state, and below it the edit that goes before each of its frames: milliseconds of
// processor time, medians; those of the studio's own thread, and in brackets those of all, most of them the
// software renderer's. No effect draws, so that a frame is the studio's alone. On an idle machine with two
// cores a frame takes the first figure and half of the rest. The target: 8 ms for a frame with its edit.

#include "../measure.h"
#include "studio_window.h"
#include "ztk_system.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <unistd.h>

using namespace zentrak;
using namespace zentrak::studio;

namespace {

constexpr int SPANS = 500, SPLINES = 4;

std::string makeScript() {
    std::string text = "<script>\n\t<tempo bpm=\"126\" beats=\"4\" start=\"0\"/>\n";
    for (int i = 0; i < SPANS; ++i) {
        if (i % 25 == 0)
            text += "\t<!-- Section " + std::to_string(i / 25) + " -->\n";
        const std::string start = formatNumber(i * 0.3), end = formatNumber(i * 0.3 + 20);
        text += "\t<effect name=\"group " + std::to_string(i % 12) + "\" start=\"" + start + "\" end=\"" +
                end + "\">\n\t\t<trigger name=\"shot\" start=\"1\" repeat=\"8\" delay=\"1\"/>\n";
        for (int s = 0; s < SPLINES; ++s) {
            text += "\t\t<spline name=\"curve " + std::to_string(s) + "\" type=\"smooth\">\n";
            for (int k = 0; k < 4; ++k)
                text += "\t\t\t<key time=\"" + std::to_string(k * 6) + "\" value=\"" +
                        std::to_string((k * 7 + s) % 3) + "\"/>\n";
            text += "\t\t</spline>\n";
        }
        text += "\t</effect>\n";
    }
    return text + "</script>\n";
}

void print(FILE* to, const char* name, const bench::Times& times) {
    fprintf(to, "%-38s %6.2f ms (%6.2f)\n", name, bench::median(times.thread),
            bench::median(times.processor));
}

} // namespace

int main(int argc, char** argv) {
    const int frames = std::max(2, bench::roundsOf(argc, argv, 60));
    FILE* const results = bench::separateResults();
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("bench_studio_" + std::to_string(getpid()));
    std::filesystem::copy(ZENTRAK_DATA_DIR, folder, std::filesystem::copy_options::recursive);
    std::ofstream(folder / "script.xml") << makeScript();
    std::filesystem::current_path(folder);
    {
        Show show;
        show.setup();
        Editor editor;
        show.open(1280, 800, "bench");
        Window window(show, editor);
        window.setWatching(false);
        show.getDisplay().setFps(display::DisplayGL::FPS_VARIABLE, 0);
        while (show.getWave().getPeak(show.getLength() - 1, show.getLength()).second == 0)
            show.getDisplay().update(); // until the wave is decoded
        const auto measure = [&](const char* name, const std::function<void(int)>& before) {
            bench::Times own, edit;
            for (int i = 0; i < frames; ++i) {
                edit.add([&] { before(i); });
                own.add([&] { window.onDraw(); });
            }
            print(results, name, own);
            print(results, "    and its edit", edit);
        };
        Timeline& timeline = window.getTimeline();
        const Box2 axis = timeline.getAxis();
        const auto mouse = [&](const char* type, float x, float y) {
            panorama::Event event;
            event.type = type;
            event.mousePos = Vector2f(x, y);
            event.wheelDelta = 1;
            timeline.handleEvent(event);
        };
        const auto drag = [&](Vector2f from, const char* name, float dx, float dy) {
            mouse("mousemove", from.x, from.y);
            mouse("mousedown", from.x, from.y);
            measure(name, [&](int i) { mouse("mousemove", from.x + dx * float(i % 40 + 4), from.y + dy); });
            measure("    given up and begun again", [&](int) {
                timeline.cancelDrag();
                mouse("mousedown", from.x, from.y);
                mouse("mousemove", from.x + dx * 4, from.y + dy);
            });
            mouse("mouseup", from.x, from.y);
        };
        // One state in which an undo, or a redo, is due.
        const auto undoAndRedo = [&](const char* name) {
            measure(name, [&](int i) { i % 2 ? editor.redo() : editor.undo(); });
            while (editor.undo()) {
            }
        };
        const auto middleOf = [&](int element) {
            timeline.reveal(element);
            const Box2 box = timeline.getElementBox(element);
            return Vector2f((box.x1 + std::min(box.x2, axis.x2)) / 2, (box.y1 + box.y2) / 2);
        };
        int first = 1;
        while (editor.getDocument()[first].kind != Kind::SPAN)
            ++first;
        timeline.show(0, 170);
        measure("folded, standing still", [](int) {});
        measure("folded, zoom", [&](int i) { timeline.zoom(i % 20 < 10 ? 1.25 : 0.8, 700); });
        timeline.foldAll(true);
        measure("unfolded, standing still", [](int) {});
        measure("unfolded, scroll", [&](int i) { timeline.mScrollRows = float(i) * 300; });
        measure("unfolded, zoom", [&](int i) { timeline.zoom(i % 20 < 10 ? 1.25 : 0.8, 700); });
        measure("unfolded, pan", [&](int i) { timeline.mScrollTime = double(i % 40); });
        measure("fold all, unfold all", [&](int i) { timeline.foldAll(i % 2 == 0); });
        timeline.foldAll(true);
        timeline.show(0, 170);
        measure("select all, and nothing", [&](int i) { i % 2 ? editor.select({}) : window.selectAll(); });
        editor.select({});
        drag(middleOf(first), "drag a span", 3, 0);
        drag(middleOf(first + 3), "drag a key", 3, 7);
        while (editor.undo()) {
        }
        window.selectAll();
        timeline.foldAll(false);
        drag(middleOf(first), "drag all spans", 3, 0);
        editor.move(1, 0);
        undoAndRedo("undo that, redo");
        window.selectAll();
        editor.copy();
        measure("paste all", [&](int i) { i % 2 ? void(editor.undo()) : editor.paste(1); });
        while (editor.undo()) {
        }
        window.selectAll();
        editor.removeSelected();
        undoAndRedo("undo and redo the removal of all");
        window.selectAll();
        editor.split(155);
        undoAndRedo("undo and redo the split of 60");
        timeline.foldAll(false);
        timeline.mScrollRows = 0;
        window.onDraw();
        drag(Vector2f(axis.x1 + 2, axis.y1 + 2), "select by a box", 20, axis.getHeight());
        measure("a span is added and taken back", [&](int i) {
            if (i % 2)
                editor.undo();
            else
                editor.addSpan(0, "new", 1, 2);
        });
    }
    std::filesystem::current_path("/");
    std::filesystem::remove_all(folder);
    return 0;
}
