// Reads any bytes as the settings of a show and saves them, as the program does at its end. What was saved
// must load again and stay as it is, and nothing else may be written.

#include "fuzz.h"
#include "kin_main.h"
#include "ztk_system.h"

#include <cstring>
#include <filesystem>

using namespace zentrak;

namespace {

constexpr const char* SCRIPT = "<script><effect name=\"clear\" end=\"1000\"></effect></script>";
constexpr const char* LOCAL_FILE = "setup.local.xml";

// Returns whether the program would have started; the settings are saved on the way out.
bool start() {
    kindler::Kindler kindler;
    try {
        kindler.setup();
    } catch (const Exception&) {
        return false;
    }
    return kindler.mSetupDone;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const fuzz::InFolder folder;
    fuzz::write("script.xml", SCRIPT, strlen(SCRIPT));
    fuzz::write(LOCAL_FILE, data, size);
    if (start()) {
        const std::string saved = fuzz::read(LOCAL_FILE);
        fuzz::check(start());
        fuzz::check(fuzz::read(LOCAL_FILE) == saved);
    } else {
        fuzz::check(fuzz::read(LOCAL_FILE) == std::string(reinterpret_cast<const char*>(data), size));
    }
    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("."))
        ++files;
    fuzz::check(files == 2);
    return 0;
}
