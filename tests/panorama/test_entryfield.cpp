#include "inputs.h"
#include "pan_entryfield.h"

using namespace zentrak;
using namespace zentrak::panorama;
using namespace zentrak::display; // the keys
using mathbase::Box2;

namespace {

class EntryFieldTest : public test::InputTest {
protected:
    EntryField* mField = add<EntryField>(Box2(10, 10, 110, 30));
    std::vector<std::string> mDone;

    EntryFieldTest() {
        mField->mOnDone = [this](const std::string& text) { mDone.push_back(text); };
        mField->show("12");
    }
};

} // namespace

TEST_F(EntryFieldTest, ReturnHandsOverWhatWasTypedAndShowsTheValueAgain) {
    mField->edit();
    type("7");
    EXPECT_TRUE(mDone.empty());
    key(KEY_ENTER);
    EXPECT_EQ(mDone, std::vector<std::string>{"7"});
    EXPECT_FALSE(mField->hasKeys());
    EXPECT_EQ(mField->getText(), "12") << "the receiver has not taken it";
    mField->mOnDone = [this](const std::string& text) { mField->show(text + "0"); };
    mField->edit();
    type("7");
    key(KEY_ENTER);
    EXPECT_EQ(mField->getText(), "70");
    EXPECT_EQ(mField->getCaret(), 0u) << "where it is scrolled to";
}

TEST_F(EntryFieldTest, EscAndTheSameTextHandOverNothing) {
    mField->edit();
    type("7");
    key(KEY_ESC);
    EXPECT_EQ(mField->getText(), "12");
    mField->edit();
    type("12");
    key(KEY_ENTER);
    EXPECT_TRUE(mDone.empty());
}

TEST_F(EntryFieldTest, TheFirstPressSelectsAllAndTheNextOneSetsTheCaret) {
    click(60, 20);
    EXPECT_EQ(mField->getSelection(), "12");
    type("7");
    EXPECT_EQ(mField->getText(), "7");
    click(60, 20);
    EXPECT_EQ(mField->getSelection(), "");
    mField->finish();
    EXPECT_EQ(mDone, std::vector<std::string>{"7"});
}

TEST_F(EntryFieldTest, TabAndTheArrowsHandOverFirst) {
    std::vector<int> tabs, steps;
    mField->mOnTab = [&](int step) { tabs.push_back(step); };
    mField->edit();
    type("7");
    key(KEY_UP);
    EXPECT_TRUE(mDone.empty()) << "without a receiver it moves the caret";
    key(KEY_TAB);
    EXPECT_EQ(mDone.size(), 1u);
    EXPECT_EQ(tabs, std::vector<int>{1});
    mField->mOnStep = [&](int step) {
        steps.push_back(step);
        mField->edit();
    };
    mField->edit();
    type("8");
    key(KEY_DOWN);
    EXPECT_EQ(mDone.size(), 2u);
    EXPECT_EQ(steps, std::vector<int>{-1});
    EXPECT_TRUE(mField->isEditing());
    key(KEY_TAB, KEYMOD_LSHIFT);
    EXPECT_EQ(tabs, (std::vector<int>{1, -1}));
}

TEST_F(EntryFieldTest, AReceiverMayDeleteIt) {
    mField->mOnDone = [this](const std::string&) { mRoot.deleteControls(); };
    mField->mOnTab = [](int) { ADD_FAILURE() << "after it is gone"; };
    mField->edit();
    type("7");
    key(KEY_TAB);
    EXPECT_EQ(mRoot.getControlSize(), 0u);
}
