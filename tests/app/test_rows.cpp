// Rows and bars of the editor without a window: a listener may delete them while they handle an event.
#include "dis_key.h"
#include "kin_gui_effect.h"
#include "kin_gui_row.h"
#include "pan_slider.h"
#include "pan_workspace.h"

#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <utility>
#include <vector>

using namespace zentrak;
using kindler::Effector;
using kindler::Row;
using mathbase::Box2;
using mathbase::Vector2f;
using panorama::Control;
using panorama::Event;

namespace {

const char* const WORDS[] = {"mousedown", "mousemove", "reset", "mouseup", "mousewheel", "keydown", "keyup"};

// Deleted memory is kept to the end of the test, filled with ones, so that any use of it shows.
std::vector<std::pair<char*, size_t>> kept;

template <class Type>
struct Scorched : Type {
    // Not inlined, or the compiler warns of a mismatched pair.
    [[gnu::noinline]] static void* operator new(size_t size) { return ::operator new(size); }
    [[gnu::noinline]] static void operator delete(void* memory, size_t size) {
        volatile char* const bytes = static_cast<char*>(memory);
        for (size_t i = 0; i < size; ++i)
            bytes[i] = char(0xFF);
        kept.emplace_back(static_cast<char*>(memory), size);
    }
};

// Deletes another control on a given event.
struct Deletes : Control {
    std::string word;
    Control* victim = nullptr;
    bool done = false;

    Control* clone() override { return new Deletes; }
    int handleEvent(Event& event) override {
        if (event.type != word)
            return Control::handleEvent(event);
        done = true;
        Control* const gone = std::exchange(victim, nullptr);
        delete gone; // and this
        return 1;
    }
};

class RowTest : public testing::Test {
protected:
    panorama::Workspace root;

    void SetUp() override { root.setArea(Box2(0, 0, 640, 400)); }
    void TearDown() override {
        root.deleteControls();
        for (const auto& [memory, size] : kept) {
            for (size_t i = 0; i < size; ++i)
                ASSERT_EQ(memory[i], char(0xFF)) << "written to after it was deleted";
            ::operator delete(memory);
        }
        kept.clear();
    }

    // A child that covers `parent` and deletes it on the event `word`.
    void deleteInEvent(Control& parent, const std::string& word) {
        Deletes* const child = new Deletes;
        child->word = word;
        child->victim = &parent;
        child->setArea(Box2(0, 0, 640, 400));
        parent.addControl(child, -1);
        parent.setFocus(child);
        Event event;
        event.type = word == "reset" ? "mousemove" : word;
        event.mousePos = Vector2f(300, 10);
        event.key = word.substr(0, 3) == "key" ? display::KEY_ESC : 0;
        root.handleEvent(event);
        EXPECT_EQ(kept.size(), 1u) << word;
    }
};

} // namespace

TEST_F(RowTest, ARowMayBeDeletedInItsOwnEvent) {
    for (const char* word : WORDS) {
        Row* const row = new Scorched<Row>;
        row->setArea(Box2(0, 0, 640, 30));
        root.addControl(row, -1);
        deleteInEvent(*row, word);
        EXPECT_EQ(root.getControlSize(), 0u) << word;
        TearDown();
    }
}

TEST_F(RowTest, ABarMayBeDeletedInItsOwnEvent) {
    for (const char* word : WORDS)
        for (const int part : {Effector::PART_NONE, Effector::PART_BAR}) { // that the mouse is on, and holds
            Effector* const bar = new Scorched<Effector>;
            bar->setArea(Box2(0, 0, 640, 30));
            bar->mHoverPart = bar->mDragPart = part;
            root.addControl(bar, -1);
            deleteInEvent(*bar, word);
            EXPECT_EQ(root.getControlSize(), 0u) << word;
            TearDown();
        }
}

TEST_F(RowTest, TheTimeSliderMayBeDeletedWhenARowTurnsIt) {
    struct Deletes : panorama::Callback {
        void controlAction(Control* source, panorama::Action) override { delete source; }
    } deletes;
    panorama::Slider* const slider = new Scorched<panorama::Slider>;
    slider->setArea(Box2(0, 350, 640, 370));
    slider->setName("timeslider");
    slider->setCallback(&deletes);
    root.addControl(slider, -1);
    Row* const row = new Row;
    row->setArea(Box2(0, 0, 640, 30));
    root.addControl(row, -1);
    Event event;
    event.type = "mousewheel";
    event.mousePos = Vector2f(300, 10);
    event.control = display::KEYMOD_LCTRL;
    event.wheelDelta = 1;
    EXPECT_EQ(row->handleEvent(event), 1);
    EXPECT_EQ(kept.size(), 1u);
    EXPECT_EQ(root.getControlSize(), 1u);
}
