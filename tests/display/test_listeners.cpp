// Listeners that join and leave during a walk over them, and the order of calls, with events that the display
// generates itself.
#include "dis_display.h"
#include "gl_fixture.h"
#include "recorder.h"

#include <memory>

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::GlTest;
using zentrak::test::Recorder;

typedef std::vector<std::string> Log;

class Listeners : public GlTest {
protected:
    Listeners() {
        for (const char* name : {"a", "b", "c"}) {
            recorders.emplace_back(new Recorder(name, log));
            recorders.back()->noteDraws = true;
            recorders.back()->attachToDisplay(&display());
        }
        log.clear();
    }

    // The log of one frame.
    Log drawn() {
        log.clear();
        frame([] {});
        return draws();
    }

    // The draws in the log: the window may gain the focus at any time.
    Log draws() const {
        Log result;
        for (const std::string& entry : log)
            if (entry.find("draw") != std::string::npos)
                result.push_back(entry);
        return result;
    }

    std::unique_ptr<Recorder> make(const char* name) {
        std::unique_ptr<Recorder> recorder(new Recorder(name, log));
        recorder->noteDraws = true;
        return recorder;
    }

    Log log;
    std::vector<std::unique_ptr<Recorder>> recorders;
};

TEST_F(Listeners, AreDrawnInTheOrderInWhichTheyJoined) {
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    recorders[0]->attachToDisplay(&display()); // leaves, and joins after the others
    EXPECT_EQ((Log{"b draw", "c draw", "a draw"}), drawn());
}

TEST_F(Listeners, ThatLeaveWhileTheyAreDrawnSkipNobody) {
    recorders[0]->draw = [&] { recorders[0]->attachToDisplay(nullptr); };
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    EXPECT_EQ((Log{"b draw", "c draw"}), drawn());
}

TEST_F(Listeners, ThatAreRemovedByAnotherBeforeTheirTurnAreNotDrawn) {
    recorders[0]->draw = [&] { display().removeListener(recorders[1].get()); };
    EXPECT_EQ((Log{"a draw", "c draw"}), drawn());
}

TEST_F(Listeners, ThatAreRemovedByAnotherAfterTheirTurnAreNotDrawnAgain) {
    recorders[1]->draw = [&] { display().removeListener(recorders[0].get()); };
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    EXPECT_EQ((Log{"b draw", "c draw"}), drawn());
}

TEST_F(Listeners, ThatDeleteThemselvesWhileTheyAreDrawnSkipNobody) {
    recorders[1]->draw = [&] { recorders[1].reset(); };
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    EXPECT_EQ((Log{"a draw", "c draw"}), drawn());
}

TEST_F(Listeners, ThatDeleteAllAreTheLastToBeDrawn) {
    recorders[0]->draw = [&] {
        std::vector<std::unique_ptr<Recorder>> all;
        all.swap(recorders);
    };
    EXPECT_EQ((Log{"a draw"}), drawn());
    EXPECT_EQ((Log{}), drawn());
}

TEST_F(Listeners, ThatJoinInAFrameAreDrawnFromTheNextOn) {
    std::unique_ptr<Recorder> late = make("late");
    recorders[1]->draw = [&] {
        late->attachToDisplay(&display());
        recorders[1]->draw = nullptr;
    };
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    EXPECT_EQ((Log{"a draw", "b draw", "c draw", "late draw"}), drawn());
}

TEST_F(Listeners, ThatSwapPositionsInAFrameAreEachDrawnOnce) {
    std::unique_ptr<Recorder> late = make("late");
    recorders[0]->draw = [&] {
        recorders[0]->draw = nullptr;
        recorders[0]->attachToDisplay(nullptr);
        late->attachToDisplay(&display());
        recorders[2]->attachToDisplay(nullptr);
    };
    EXPECT_EQ((Log{"a draw", "b draw"}), drawn());
    EXPECT_EQ((Log{"b draw", "late draw"}), drawn());
}

TEST_F(Listeners, ThatThrowLeaveTheDisplayInOrder) {
    recorders[1]->draw = [] { throw 12; };
    EXPECT_THROW(display().update(), int);
    recorders[1]->draw = [&] { recorders[0].reset(); };
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    recorders[1]->draw = nullptr;
    EXPECT_EQ((Log{"b draw", "c draw"}), drawn());
}

TEST_F(Listeners, HearTheSizeOnceInTheOrderInWhichTheyJoinedWhenAWindowOfFixedSizeOpens) {
    display().close();
    display().mDirty = false;
    log.clear();
    display().open();
    Log resizes;
    for (const std::string& entry : log)
        if (entry.find("resize") != std::string::npos)
            resizes.push_back(entry);
    EXPECT_EQ(
        (Log{"a resize 640x400 to 640x400", "b resize 640x400 to 640x400", "c resize 640x400 to 640x400"}),
        resizes);
    EXPECT_TRUE(display().mDirty);
}

TEST_F(Listeners, ThatCloseTheWindowInAFrameEndIt) {
    recorders[1]->draw = [&] { display().close(); };
    log.clear();
    EXPECT_FALSE(display().update());
    EXPECT_EQ((Log{"a draw", "b draw"}), draws());
    EXPECT_FALSE(display().mOpened);
    EXPECT_FALSE(display().mPushedStates);
    EXPECT_FALSE(display().update());
    recorders[1]->draw = nullptr;
    display().open();
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
}

TEST_F(Listeners, ThatOpenANewWindowInAFrameGoOnInIt) {
    recorders[1]->draw = [&] {
        recorders[1]->draw = nullptr;
        display().close();
        display().open();
    };
    const int contexts = display().mContextCount;
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
    EXPECT_EQ(contexts + 1, display().mContextCount);
    EXPECT_EQ((Log{"a draw", "b draw", "c draw"}), drawn());
}
