// Shared by the tests of particles.
#pragma once

#include "am_archivemanager.h"
#include "dis_display.h"
#include "sparks_engine.h"
#include "support.h"

#include <memory>
#include <string>

namespace zentrak::test {

// A display that is never opened, with its own folder: enough for everything but drawing. Its clock only
// moves when set.
struct Closed {
    TempDir folder;
    am::ArchiveManager archives;
    display::DisplayGL display{display::WindowMode()};

    Closed() {
        archives.addArchive(folder.path());
        display.setArchive(&archives);
        display.mFpsType = display::DisplayGL::FPS_DELTA;
        setTime(0);
    }
    void setTime(float time) { display.mFpsLastTime = time; }
};

// An engine that suppresses what it prints at its end.
struct QuietEngine : std::unique_ptr<sparks::Engine> {
    explicit QuietEngine(display::DisplayGL* display)
        : std::unique_ptr<sparks::Engine>(new sparks::Engine(display)) {}
    ~QuietEngine() {
        CaptureStdout quiet;
        reset();
    }
};

inline int countOf(const sparks::Spark* list) {
    int count = 0;
    for (; list; list = list->next)
        ++count;
    return count;
}

// A long-lived particle at the origin.
inline sparks::Spark longLived() {
    sparks::Spark spark;
    spark.size = 10;
    spark.energy = 1;
    spark.intensity = 1;
    spark.colour = mathbase::Vector3f(1, 1, 1);
    return spark;
}

} // namespace zentrak::test
