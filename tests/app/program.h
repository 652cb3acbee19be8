// The real executable as a child process, in its own folder, with real keys from the virtual keyboard.
#pragma once

#include "input.h"
#include "picture.h"
#include "support.h"

#include <functional>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zentrak::test {

// Timeout in seconds, enough for a slow machine with sanitizers.
constexpr double DEADLINE = 60.0;

// Polls `condition` until it holds; false if it does not within `seconds`.
bool waitFor(const std::function<bool()>& condition, double seconds = DEADLINE);

// The show's executable, started in a folder that the test fills first. The folder already has the subfolders
// of data/, which the effects load from, and the editor's files.
class Program {
public:
    Program();
    ~Program(); // ends it, if it still runs
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    const TempDir& dir() const { return mDir; }
    void write(const std::string& name, const std::string& bytes); // creates the folders it needs
    std::string read(const std::string& name) const { return readFile(mDir.file(name)); }
    bool has(const std::string& name) const { return fileExists(mDir.file(name)); }

    // Plays music on a silent device. `environment` is passed to env(1): variables, or a command to run the
    // show under.
    void start(const std::string& environment = "");
    bool running();
    int wait();                                    // its exit status; -1 after a timeout or a signal
    int run(const std::string& environment = "") { // start and wait
        start(environment);
        return wait();
    }
    std::string output() const; // everything flushed so far
    pid_t pid() const { return mPid; }

    // For the setup file: each program has a unique title.
    const std::string& title() const { return mTitle; }
    // Waits for its window and gives it the keyboard focus. False if the program ends first.
    bool focus();
    void key(const std::string& name) { mViewer->key(name); } // "Escape", "ctrl+t"
    void closeWindow() { mViewer->requestClose(); }           // as its close button does
    Viewer& viewer() { return *mViewer; }                     // after focus()
    bool grab(Picture& picture);                              // what its window shows

    // What the key P has printed so far, one time each.
    std::vector<std::string> printedTimes() const;
    double askTime();             // presses P; -1 if there is no answer
    bool reaches(double seconds); // asks until it is at least this late

private:
    TempDir mDir;
    std::string mTitle;
    pid_t mPid = -1;
    int mStatus = 0;
    std::unique_ptr<Viewer> mViewer; // of the window, once there
};

} // namespace zentrak::test
