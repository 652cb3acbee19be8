// Shows a scene file in a window, or writes a picture of it.
//   zentrak-view [OPTION...] FILE.o3d      --help lists the options
// Exit status: 0, 1 if the file can't be read or the picture can't be written, 2 for wrong arguments.

#include "command/virtual_display.h"
#include "view/viewer.h"

#include "am_archivemanager.h"
#include "command/command.h"
#include "dis_display.h"
#include "ztk_process.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

using namespace zentrak;

namespace {

constexpr const char* USAGE =
    R"(usage: zentrak-view [OPTION...] FILE.o3d
Shows a scene file, and loads it again whenever it changes.
  --time=SECONDS      starts at this time
  --camera=NAME       looks through a camera of the scene
  --edges             draws the triangles' edges too; --wire draws only them
  --normals           draws the normals
  --no-panel          shows only the picture; Tab brings the panel back
  --size=WIDTHxHEIGHT of the window; default: 1280x800
  --picture=OUT.png   writes what the window would show and exits; needs no display if Xvfb is installed
Mouse: drag turns, right drag moves, the wheel zooms.
Keys: Space plays, arrows step (Shift: further), Home, End, C camera, F frame all or the selected,
W edges, N normals, G grid, Tab panel, Escape quits.
)";

struct Call {
    std::string file, picture, camera;
    float time = 0;
    bool panel = true, normals = false;
    view::Viewer::Fill fill = view::Viewer::SHADED;
    int width = 1280, height = 800;
};

bool readSize(const std::string& text, Call& call) {
    const size_t cross = text.find('x');
    return cross != std::string::npos &&
           command::readNumber(text.substr(0, cross).c_str(), 64, 8192, call.width) &&
           command::readNumber(text.substr(cross + 1).c_str(), 64, 8192, call.height);
}

bool readOption(Call& call, const std::string& name, const std::string& value, bool hasValue) {
    if (name == "--time" && !value.empty()) {
        char* end = nullptr;
        call.time = strtof(value.c_str(), &end);
        return !*end;
    }
    if (name == "--camera")
        return !(call.camera = value).empty();
    if (name == "--picture")
        return !(call.picture = value).empty();
    if (name == "--size")
        return readSize(value, call);
    if (hasValue)
        return false;
    if (name == "--edges")
        call.fill = view::Viewer::SHADED_AND_EDGES;
    else if (name == "--wire")
        call.fill = view::Viewer::EDGES;
    else if (name == "--normals")
        call.normals = true;
    else if (name == "--no-panel")
        call.panel = false;
    else
        return false;
    return true;
}

bool readCall(int argc, char** argv, Call& call) {
    std::vector<std::string> files;
    const auto read = [&](const std::string& name, const std::string& value, bool hasValue) {
        return readOption(call, name, value, hasValue);
    };
    if (!command::readArguments(argc, argv, "zentrak-view", read, 1, files))
        return false;
    call.file = files[0];
    call.height += call.height & 1; // a picture can only be taken of an even height
    return true;
}

// The folder of the font, relative to the program: as installed, or in the source tree.
std::string dataFolder() {
    std::error_code problem;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", problem);
    for (const char* const folder : {"../share/zentrak", "../../../data"}) {
        const std::filesystem::path path = (program.parent_path() / folder).lexically_normal();
        if (std::filesystem::exists(path / "fonthelvete2.png", problem))
            return path.string();
    }
    throw std::runtime_error("the font fonthelvete2.png is in none of this program's data folders");
}

// Writes the window's contents to a file.
void writePicture(display::DisplayGL& display, const std::string& name) {
    am::Image image(new am::ImageObject);
    image->resize(display.mWindowMode.width, display.mWindowMode.height);
    display.getScreenShot(image);
    const std::filesystem::path path = std::filesystem::absolute(name);
    am::ArchiveManager archives;
    archives.addArchive(path.parent_path().string() + "/");
    if (!archives.writeImage(path.filename().string(), image))
        throw std::runtime_error(name + ": can't be written");
}

void show(const Call& call) {
    std::optional<command::VirtualDisplay> screen;
    if (command::VirtualDisplay::isNeeded()) {
        if (call.picture.empty())
            throw std::runtime_error("there is no display; --picture=OUT.png writes a picture without one");
        screen.emplace(call.width, call.height);
    }
    am::ArchiveManager archives;
    archives.addArchive(dataFolder());
    display::WindowMode mode("zentrak-view " + call.file, call.width, call.height, false);
    mode.canResize = true;
    display::DisplayGL display(mode);
    display.setArchive(&archives);
    display.open();
    view::Viewer viewer(&display, call.file);
    viewer.setTime(call.time);
    viewer.mFill = call.fill;
    viewer.mNormals = call.normals;
    viewer.showPanel(call.panel);
    if (!call.camera.empty() && !viewer.chooseCamera(call.camera))
        throw std::runtime_error(call.file + ": there is no camera '" + call.camera + "'");
    if (call.picture.empty()) {
        display.updateBlocking();
        return;
    }
    // The window manager may set the size late.
    for (int frame = 0; frame < 3; ++frame)
        display.update();
    writePicture(display, call.picture);
}

} // namespace

int main(int argc, char** argv) {
    boundProcess();
    if (argc == 2 && strcmp(argv[1], "--help") == 0) {
        fputs(USAGE, stdout);
        return 0;
    }
    Call call;
    if (!readCall(argc, argv, call)) {
        fputs(USAGE, stderr);
        return 2;
    }
    try {
        // Before the window opens, because a bad file needs none.
        view::LoadedScene probe(call.file);
    } catch (const std::exception& exception) {
        fprintf(stderr, "%s: %s\n", call.file.c_str(), exception.what());
        return 1;
    }
    try {
        show(call);
    } catch (const std::exception& exception) {
        fprintf(stderr, "zentrak-view: %s\n", exception.what());
        return 1;
    }
    return 0;
}
