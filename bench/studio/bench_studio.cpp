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
        measure("folded, standing still", [](int) {});
        timeline.foldAll(true);
        measure("unfolded, standing still", [](int) {});
        measure("unfolded, scrolling", [&](int i) { timeline.mScrollRows = float(i) * 300; });
        editor.select({editor.getDocument()[60].id});
        editor.beginGesture();
        measure("unfolded, a span is dragged", [&](int i) { editor.move(0.1 * (i % 40), 0); });
        editor.endGesture();
        window.selectAll();
        editor.beginGesture();
        measure("unfolded, all spans are dragged", [&](int i) { editor.move(0.1 * (i % 40), 0); });
        editor.endGesture();
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
