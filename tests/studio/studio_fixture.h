// The studio on a real window over a copy of the show, operated by real keys and a real mouse.
#pragma once

#include "input.h"
#include "picture.h"
#include "studio_window.h"
#include "support.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace zentrak::test {

// Opens the studio in a folder of its own at the first use of window(). The folder has the files of the
// effects, a setup file without music, and `mScript`.
class StudioTest : public ::testing::Test {
protected:
    StudioTest();
    ~StudioTest() override;

    std::string mScript; // to be set before the first use; empty: there is no such file
    int mWidth = 1280;
    int mHeight = 800;

    const TempDir& dir() const { return mDir; }
    std::string script() const { return readFile(mDir.file("script.xml")); } // on disk

    studio::Window& window();
    studio::Editor& editor() { return window().getEditor(); }
    studio::Show& show() { return window().getShow(); }
    studio::Timeline& timeline() { return window().getTimeline(); }
    panorama::Overlay& overlay() { return window().getOverlay(); }
    Viewer& viewer();
    void close();  // without a question
    void killed(); // likewise, without a chance to clean up

    // At least one frame, with all events sent before it.
    void frame();
    bool until(const std::string& what, const std::function<bool()>& done) {
        return viewer().until(what, done);
    }

    int element(const std::string& name, int nth = 0); // its index
    const studio::Element& at(const std::string& name, int nth = 0) {
        return editor().getDocument()[element(name, nth)];
    }

    // The mouse, in pixels of the interface. A click is two moves, so that no two become a double click.
    void moveTo(mathbase::Vector2f place);
    void click(mathbase::Vector2f place, int button = 1);
    void click(const std::string& name); // its bar, key or trigger
    void doubleClick(mathbase::Vector2f place);
    void drag(mathbase::Vector2f from, float dx, float dy, const std::string& held = "");
    mathbase::Vector2f middle(int element);
    mathbase::Vector2f onRuler(double time); // below the flags of the bookmarks
    void showBars(); // 20 pixels a second from 0 on: the grid's step is a bar of two seconds
    void choose(const std::string& label);  // a row of the menu, or a button of the question
    void leaveBy(const std::string& label); // likewise; the studio ends
    void key(const std::string& name) { viewer().key(name); }
    Picture picture(); // what the window shows

    // A folder of data/ that the test may change: the fixture's own are links.
    void copyFolder(const std::string& name);
    // Breaks a file, waits until an error shows that contains `named`, mends the file, and waits until there
    // is none. Returns the error.
    std::string breakAndMend(
        const std::string& file, const std::string& bad, const std::string& named,
        const std::function<void()>& meanwhile = [] {});

private:
    void press(mathbase::Vector2f place, const std::string& then);

    TempDir mDir;
    std::unique_ptr<WorkingDir> mHere;
    std::unique_ptr<studio::Show> mShow;
    std::unique_ptr<studio::Editor> mEditor;
    std::unique_ptr<studio::Window> mWindow;
    std::unique_ptr<Viewer> mViewer;
};

} // namespace zentrak::test
