#include "inputs.h"
#include "pan_button.h"
#include "pan_dropdown.h"

using namespace zentrak;
using namespace zentrak::panorama;
using namespace zentrak::display; // the keys
using mathbase::Box2;

namespace {

class DropdownTest : public test::InputTest {
protected:
    // At the top left; its list begins at y = 30, with rows of 10 pixels from 35 on, 15 apart.
    Dropdown* three() {
        return load<Dropdown>(
            Box2(10, 10, 110, 30),
            "><option id=\"1\" name=\"a\"/><option id=\"2\" name=\"b\" default=\"true\"/><option "
            "id=\"3\" name=\"c\"/></control>");
    }
    static float row(int index) { return 40.0f + 15.0f * float(index); }
};

} // namespace

TEST_F(DropdownTest, OptionsAreRead) {
    Dropdown* dropdown = three();
    EXPECT_EQ(dropdown->getType(), "dropdown");
    EXPECT_EQ(dropdown->getOptionCount(), 3);
    EXPECT_EQ(dropdown->getSelected(), 1);
    EXPECT_EQ(dropdown->getSelectedId(), "2");
    EXPECT_EQ(dropdown->getSelectedName(), "b");
    EXPECT_EQ(dropdown->getList()->mSelected, "b");
    reload(dropdown, "id=\"d\"/>");
    EXPECT_EQ(dropdown->getOptionCount(), 3);
    reload(dropdown, "><option id=\"4\"/><option name=\"e\"/><option/></control>");
    EXPECT_EQ(dropdown->getOptionCount(), 3);
    EXPECT_EQ(dropdown->getSelected(), 0); // the first if none is the default
    EXPECT_EQ(dropdown->getSelectedName(), "4");
    dropdown->setSelected(2);
    EXPECT_EQ(dropdown->getSelectedName(), "");
    EXPECT_EQ(dropdown->getSelectedId(), "");
    Control* clone = dropdown->clone();
    EXPECT_NE(dynamic_cast<Dropdown*>(clone), nullptr);
    delete clone;
}

TEST_F(DropdownTest, AClickOpensTheListAndAnotherChooses) {
    Dropdown* dropdown = three();
    click(20, 20);
    EXPECT_EQ(mRoot.mContext, dropdown->getList());
    EXPECT_EQ(dropdown->getList()->getArea(), Box2(10, 30, 110, 80));
    EXPECT_EQ(takeActions(), Actions());
    click(20, row(2));
    EXPECT_EQ(mRoot.mContext, nullptr);
    EXPECT_EQ(dropdown->getSelectedId(), "3");
    EXPECT_EQ(takeActions(), Actions({8}));
    EXPECT_EQ(mSource, dropdown);
    click(20, 20);
    click(20, row(2)); // which it is already
    EXPECT_EQ(takeActions(), Actions());
    EXPECT_EQ(mRoot.mContext, nullptr);
}

TEST_F(DropdownTest, APressADragAndAReleaseOnARowChooseToo) {
    Dropdown* dropdown = three();
    press(20, 20);
    release(20, row(0));
    EXPECT_EQ(dropdown->getSelectedId(), "1");
    EXPECT_EQ(mRoot.mContext, nullptr);
}

TEST_F(DropdownTest, AMoveWithinTheClickThatOpensTheListDoesNotCloseIt) {
    Dropdown* dropdown = three();
    press(20, 20);
    move(21, 20);
    release(22, 21);
    EXPECT_EQ(mRoot.mContext, dropdown->getList());
    click(20, row(0));
    EXPECT_EQ(dropdown->getSelectedId(), "1");
}

TEST_F(DropdownTest, AClickElsewhereClosesTheListAndDoesNothingElse) {
    Dropdown* dropdown = three();
    Button* button = add<Button>(Box2(300, 10, 400, 30));
    click(20, 20);
    click(350, 20);
    EXPECT_EQ(mRoot.mContext, nullptr);
    EXPECT_FALSE(button->pushed);
    EXPECT_EQ(dropdown->getSelectedId(), "2");
    click(20, 20);
    click(20, 20); // on itself
    EXPECT_EQ(mRoot.mContext, nullptr);
    click(20, 20);
    click(20, 31); // on the edge of the list, which belongs to no row
    EXPECT_EQ(mRoot.mContext, nullptr);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(DropdownTest, OptionsOfTheSameNameAreDistinguished) {
    Dropdown* dropdown = load<Dropdown>(
        Box2(10, 10, 110, 30), "><option id=\"1\" name=\"x\"/><option id=\"2\" name=\"x\"/></control>");
    click(20, 20);
    click(20, row(1));
    EXPECT_EQ(dropdown->getSelectedId(), "2");
    EXPECT_EQ(takeActions(), Actions({8}));
}

TEST_F(DropdownTest, BetweenTwoRowsIsTheNearerOne) {
    Dropdown* dropdown = three();
    click(20, 20);
    move(20, 47);
    EXPECT_EQ(dropdown->getList()->mHighlight, 0);
    move(20, 48);
    EXPECT_EQ(dropdown->getList()->mHighlight, 1);
    move(20, 78);
    EXPECT_EQ(dropdown->getList()->mHighlight, -1);
    move(9, 48);
    EXPECT_EQ(dropdown->getList()->mHighlight, -1);
}

TEST_F(DropdownTest, TheKeysChooseWhileTheListIsClosed) {
    Dropdown* dropdown = three();
    key(KEY_DOWN); // it has the focus only because it was loaded last
    EXPECT_EQ(dropdown->getSelectedId(), "2");
    dropdown->takeKeys();
    EXPECT_EQ(key(KEY_DOWN), 1);
    EXPECT_EQ(dropdown->getSelectedId(), "3");
    key(KEY_DOWN);
    EXPECT_EQ(dropdown->getSelectedId(), "3");
    key(KEY_HOME);
    EXPECT_EQ(dropdown->getSelectedId(), "1");
    key(KEY_UP);
    key(KEY_END);
    EXPECT_EQ(dropdown->getSelectedId(), "3");
    key(KEY_UP);
    EXPECT_EQ(dropdown->getSelectedId(), "2");
    EXPECT_EQ(takeActions(), Actions({8, 8, 8, 8}));
}

TEST_F(DropdownTest, TheKeysOpenTheListMoveInItAndChoose) {
    Dropdown* dropdown = three();
    dropdown->takeKeys();
    Context* list = dropdown->getList();
    for (const int opening : {int(KEY_SPACE), int(KEY_ENTER), int(KEY_KP_ENTER)}) {
        dropdown->setSelected(1);
        EXPECT_EQ(key(opening), 1);
        EXPECT_EQ(mRoot.mContext, list);
        EXPECT_EQ(key(KEY_DOWN), 1);
        EXPECT_EQ(list->mHighlight, 2);
        key(KEY_DOWN);
        EXPECT_EQ(list->mHighlight, 2);
        key(KEY_HOME);
        EXPECT_EQ(list->mHighlight, 0);
        key(KEY_UP);
        EXPECT_EQ(list->mHighlight, 0);
        key(KEY_PAGEDOWN);
        EXPECT_EQ(list->mHighlight, 2);
        key(KEY_PAGEUP);
        EXPECT_EQ(list->mHighlight, 0);
        EXPECT_EQ(takeActions(), Actions());
        EXPECT_EQ(key(opening), 1);
        EXPECT_EQ(mRoot.mContext, nullptr);
        EXPECT_EQ(dropdown->getSelectedId(), "1");
        EXPECT_EQ(takeActions(), Actions({8}));
    }
    key(KEY_SPACE);
    key(KEY_END);
    EXPECT_EQ(key(KEY_ESC), 1); // and so it does not end the show
    EXPECT_EQ(mRoot.mContext, nullptr);
    EXPECT_EQ(dropdown->getSelectedId(), "1");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(DropdownTest, TheListOpensUpwardsWhereThereIsMoreRoom) {
    Dropdown* dropdown = three();
    dropdown->setArea(Box2(10, 560, 110, 580));
    click(20, 570);
    EXPECT_EQ(dropdown->getList()->getArea(), Box2(10, 510, 110, 560));
    click(20, 520);
    EXPECT_EQ(dropdown->getSelectedId(), "1");
}

TEST_F(DropdownTest, AListTallerThanTheWindowIsMovedByTheWheelAndTheKeys) {
    Dropdown* dropdown = add<Dropdown>(Box2(10, 10, 110, 30));
    for (int i = 0; i < 10000; ++i)
        dropdown->addOption(std::to_string(i), "");
    Context* list = dropdown->getList();
    click(20, 20);
    EXPECT_EQ(list->getArea().y1, 30.0f);
    wheel(20, 300, -1);
    EXPECT_EQ(list->getArea().y1, -15.0f);
    wheel(20, 300, 100);
    EXPECT_EQ(list->getArea().y1, 0.0f);
    wheel(20, 300, -1e9f);
    EXPECT_EQ(list->getArea().y2, 600.0f);
    click(20, 590);
    EXPECT_EQ(dropdown->getSelectedId(), "9999");
    dropdown->takeKeys();
    key(KEY_SPACE); // opens with the current row in view
    EXPECT_EQ(list->getArea().y2, 600.0f);
    key(KEY_PAGEUP);
    key(KEY_HOME);
    EXPECT_EQ(list->getArea().y1, 0.0f);
    key(KEY_ENTER);
    EXPECT_EQ(dropdown->getSelectedId(), "0");
}

TEST_F(DropdownTest, WithoutOptionsItOpensNothing) {
    Dropdown* dropdown = add<Dropdown>(Box2(10, 10, 110, 30));
    click(20, 20);
    EXPECT_EQ(mRoot.mContext, nullptr);
    for (const int code : {int(KEY_DOWN), int(KEY_UP), int(KEY_HOME), int(KEY_END), int(KEY_SPACE)})
        key(code);
    EXPECT_EQ(dropdown->getSelected(), -1);
    EXPECT_EQ(dropdown->getSelectedId(), "");
    EXPECT_EQ(dropdown->getSelectedName(), "");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(DropdownTest, MayBeDeletedWhileItsListIsOpenAndByItsOwnAction) {
    three();
    click(20, 20);
    mRoot.deleteControls();
    EXPECT_EQ(mRoot.mContext, nullptr);
    click(20, row(2));

    struct Deleter : Callback {
        Workspace* root = nullptr;
        void controlAction(Control*, Action) override { root->deleteControls(); }
    } deleter;
    deleter.root = &mRoot;
    three()->setCallback(&deleter);
    click(20, 20);
    click(20, row(2));
    EXPECT_EQ(mRoot.getControlSize(), 0u);
    three()->setCallback(&deleter);
    mRoot.getControl(0)->setFocus(nullptr);
    static_cast<Dropdown*>(mRoot.getControl(0))->takeKeys();
    key(KEY_SPACE);
    key(KEY_UP);
    key(KEY_SPACE);
    EXPECT_EQ(mRoot.getControlSize(), 0u);
    EXPECT_EQ(mRoot.mContext, nullptr);
}

TEST_F(DropdownTest, WithInactiveSetItDoesNotOpen) {
    Dropdown* dropdown = three();
    dropdown->setInactive(true);
    click(20, 20);
    EXPECT_EQ(mRoot.mContext, nullptr);
    dropdown->takeKeys();
    key(KEY_DOWN);
    EXPECT_EQ(dropdown->getSelectedId(), "2");
}
