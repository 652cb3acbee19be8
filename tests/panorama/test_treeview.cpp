#include "inputs.h"
#include "pan_treeview.h"

#include <limits>

using namespace zentrak;
using namespace zentrak::panorama;
using namespace zentrak::display; // the keys
using mathbase::Box2;

namespace {

class TreeViewTest : public test::InputTest {
protected:
    TreeView* mTree = nullptr;

    // a (with b (with c), d) and e, in a box whose rows of 18 pixels begin at 11.
    TreeView* tree(float height = 200) {
        mTree =
            load<TreeView>(Box2(10, 10, 210, 10 + height),
                           "><item id=\"1\" text=\"a\"><item id=\"2\" text=\"b\"><item id=\"3\" text=\"c\"/>"
                           "</item><item id=\"4\" text=\"d\"/></item><item id=\"5\" text=\"e\"/></control>");
        return mTree;
    }
    static float row(int index) { return 20.0f + 18.0f * float(index); }

    std::string selected() const {
        const TreeView::Node* node = mTree->getItem(mTree->getSelected());
        return node ? node->text.get() : "";
    }
};

} // namespace

TEST_F(TreeViewTest, ItemsAreReadWithTheirDepths) {
    tree();
    EXPECT_EQ(mTree->getType(), "treeview");
    ASSERT_EQ(mTree->getItemCount(), 5);
    const struct {
        const char *id, *text;
        int depth, parent, next;
    } expected[] = {{"1", "a", 0, -1, 4},
                    {"2", "b", 1, 0, 3},
                    {"3", "c", 2, 1, 3},
                    {"4", "d", 1, 0, 4},
                    {"5", "e", 0, -1, 5}};
    for (int i = 0; i < 5; ++i) {
        const TreeView::Node& node = *mTree->getItem(i);
        EXPECT_EQ(node.id, expected[i].id);
        EXPECT_EQ(node.text.get(), expected[i].text);
        EXPECT_EQ(node.depth, expected[i].depth);
        EXPECT_EQ(node.parent, expected[i].parent);
        EXPECT_EQ(node.next, expected[i].next);
        EXPECT_EQ(node.size, 18.0f);
        EXPECT_FALSE(node.open);
    }
    EXPECT_EQ(mTree->getRowCount(), 2);
    reload(mTree, "text=\"Heading\"/>");
    EXPECT_EQ(mTree->getItemCount(), 5);
    EXPECT_EQ(mTree->getCaption(), "Heading");
    Control* clone = mTree->clone();
    EXPECT_NE(dynamic_cast<TreeView*>(clone), nullptr);
    delete clone;
}

TEST_F(TreeViewTest, ItemsHaveTheirOwnSizeOrThatOfTheTree) {
    TreeView* sized =
        load<TreeView>(Box2(0, 0, 100, 100),
                       "size=\"30\"><item size=\"12\"/><item/><item size=\"0\"/><item size=\"nan\"/><item "
                       "size=\"-5\"/><item size=\"1e9\"/></control>");
    EXPECT_EQ(sized->getItem(0)->size, 12.0f);
    for (int i = 1; i < 6; ++i)
        EXPECT_EQ(sized->getItem(i)->size, 30.0f) << i;
    reload(sized, "size=\"inf\"><item/></control>");
    EXPECT_EQ(sized->getItem(0)->size, 30.0f);
}

TEST_F(TreeViewTest, APressSelectsAndLogsTheItem) {
    tree();
    std::string printed;
    {
        test::CaptureStdout capture;
        EXPECT_EQ(press(100, row(1)), 1);
        printed = capture.text();
    }
    EXPECT_EQ(selected(), "e");
    EXPECT_EQ(takeActions(), Actions({8}));
    EXPECT_EQ(mSource, mTree);
    EXPECT_NE(printed.find("item name : e\n"), std::string::npos) << printed;
    release(100, row(1));
    click(100, row(2)); // below the last
    EXPECT_EQ(selected(), "e");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(TreeViewTest, AnArrowOpensAndCloses) {
    tree();
    click(15, row(0));
    EXPECT_TRUE(mTree->getItem(0)->open);
    EXPECT_EQ(mTree->getRowCount(), 4);
    EXPECT_EQ(selected(), "");
    click(15 + 16, row(1)); // that of b, one level in
    EXPECT_EQ(mTree->getRowCount(), 5);
    EXPECT_EQ(mTree->getRow(2), 2);
    click(15, row(0));
    EXPECT_EQ(mTree->getRowCount(), 2);
    EXPECT_EQ(mTree->getRow(2), -1);
    click(15, row(0)); // its children stay as they were
    EXPECT_EQ(mTree->getRowCount(), 5);
    EXPECT_EQ(takeActions(), Actions());
    click(15, row(4)); // e has nothing to open, and so is selected
    EXPECT_EQ(selected(), "e");
}

TEST_F(TreeViewTest, ADoubleClickOpensToo) {
    tree();
    click(100, row(0));
    mouse("mousedown", 100, row(0), 0, true);
    EXPECT_TRUE(mTree->getItem(0)->open);
    EXPECT_EQ(selected(), "a");
}

TEST_F(TreeViewTest, TheKeysWalkTheTree) {
    tree();
    key(KEY_DOWN); // it has the focus only because it was loaded last
    EXPECT_EQ(selected(), "");
    click(100, row(0));
    EXPECT_EQ(key(KEY_RIGHT), 1);
    EXPECT_EQ(mTree->getRowCount(), 4);
    const struct {
        int key;
        const char* selected;
    } steps[] = {{KEY_RIGHT, "b"}, {KEY_RIGHT, "b"},    {KEY_RIGHT, "c"},  {KEY_RIGHT, "c"}, {KEY_DOWN, "d"},
                 {KEY_DOWN, "e"},  {KEY_DOWN, "e"},     {KEY_UP, "d"},     {KEY_LEFT, "a"},  {KEY_END, "e"},
                 {KEY_HOME, "a"},  {KEY_PAGEDOWN, "e"}, {KEY_PAGEUP, "a"}, {KEY_UP, "a"}};
    for (const auto& step : steps) {
        EXPECT_EQ(key(step.key), 1);
        EXPECT_EQ(selected(), step.selected);
    }
    key(KEY_ENTER);
    EXPECT_EQ(mTree->getRowCount(), 2);
    key(KEY_RIGHT); // with its child still open
    EXPECT_EQ(mTree->getRowCount(), 5);
    key(KEY_LEFT);
    EXPECT_EQ(mTree->getRowCount(), 2);
    EXPECT_EQ(selected(), "a");
}

TEST_F(TreeViewTest, TheSelectionOfAnItemThatGetsHiddenGoesToItsParent) {
    tree();
    mTree->setOpen(0, true);
    mTree->setOpen(1, true);
    click(100, row(2));
    EXPECT_EQ(selected(), "c");
    mTree->setOpen(0, false);
    key(KEY_DOWN);
    EXPECT_EQ(selected(), "e");
}

TEST_F(TreeViewTest, WhatOverflowsIsScrolledByTheWheelAndNoFurtherThanItsEnd) {
    tree(56); // 54 pixels for rows
    mTree->setOpen(0, true);
    mTree->setOpen(1, true);
    move(50, 20);
    EXPECT_EQ(wheel(50, 20, -0.5f), 1);
    EXPECT_EQ(mTree->getScroll(false), 25.0f);
    wheel(50, 20, -100);
    EXPECT_EQ(mTree->getScroll(false), 36.0f);
    click(100, row(2) - 1);
    EXPECT_EQ(selected(), "e");
    wheel(50, 20, 100);
    EXPECT_EQ(mTree->getScroll(false), 0.0f);
    key(KEY_UP); // to d, which has to be brought into view
    EXPECT_EQ(mTree->getScroll(false), 18.0f);
    key(KEY_HOME);
    EXPECT_EQ(mTree->getScroll(false), 0.0f);
    mTree->setOpen(0, false);
    EXPECT_EQ(wheel(50, 20, -1), 0); // nothing to scroll: passed on
}

TEST_F(TreeViewTest, TheBarIsDraggedAlsoOutsideAndPagedBesideTheThumb) {
    tree(56);
    mTree->setOpen(0, true);
    mTree->setOpen(1, true); // 90 pixels in 54: a thumb of 32 that travels 22 for 36
    press(205, 15);
    move(205, 15 + 11);
    EXPECT_NEAR(mTree->getScroll(false), 18.0f, 2.0f);
    move(700, 500);
    EXPECT_EQ(mTree->getScroll(false), 36.0f);
    mouse("mouseup", 700, 500);
    move(205, 12);
    EXPECT_EQ(mTree->getScroll(false), 36.0f);
    click(205, 12);
    EXPECT_EQ(mTree->getScroll(false), 0.0f);
    EXPECT_EQ(selected(), "");
}

TEST_F(TreeViewTest, ItemsCanBeAddedAnywhere) {
    mTree = add<TreeView>(Box2(10, 10, 210, 210));
    const int a = mTree->addItem(-1, "1", "a");
    const int b = mTree->addItem(-1, "2", "b");
    mTree->setSelected(b);
    const int c = mTree->addItem(a, "3", "c", 20);
    EXPECT_EQ(c, 1);
    EXPECT_EQ(selected(), "b");
    mTree->addItem(c, "4", "d");
    mTree->addItem(mTree->addItem(3, "7", "g"), "8", "h"); // in b, before more comes into a
    mTree->addItem(a, "5", "e");
    mTree->addItem(99, "6", "f");
    std::string all;
    for (int i = 0; i < mTree->getItemCount(); ++i) {
        const TreeView::Node& node = *mTree->getItem(i);
        all += node.text.get() + std::to_string(node.depth) + std::to_string(node.parent) +
               std::to_string(node.next) + " ";
    }
    EXPECT_EQ(all, "a0-14 c103 d213 e104 b0-17 g147 h257 f0-18 ");
    EXPECT_EQ(mTree->getItem(1)->size, 20.0f);
    mTree->deleteItems();
    EXPECT_EQ(mTree->getItemCount(), 0);
    EXPECT_EQ(mTree->getSelected(), -1);
    click(50, 20);
    key(KEY_DOWN);
}

TEST_F(TreeViewTest, IndicesOutOfRangeAreIgnored) {
    tree();
    mTree->setSelected(77);
    EXPECT_EQ(mTree->getSelected(), -1);
    mTree->setOpen(-3, true);
    mTree->setOpen(5, true);
    EXPECT_EQ(mTree->getItem(-1), nullptr);
    EXPECT_EQ(mTree->getItem(5), nullptr);
    mTree->setScroll(false, std::numeric_limits<float>::quiet_NaN());
    mTree->setScroll(true, std::numeric_limits<float>::infinity());
    EXPECT_EQ(mTree->getScroll(false), 0.0f);
}

TEST_F(TreeViewTest, TenThousandItemsAreOneClickApart) {
    std::string items;
    for (int i = 0; i < 10000; ++i)
        items += "<item text=\"" + std::to_string(i) + "\"/>";
    mTree = load<TreeView>(Box2(10, 10, 210, 210), ">" + items + "</control>");
    EXPECT_EQ(mTree->getRowCount(), 10000);
    click(100, row(0));
    key(KEY_END);
    EXPECT_EQ(selected(), "9999");
    EXPECT_EQ(mTree->getScroll(false), 180000.0f - 198.0f);
}

TEST_F(TreeViewTest, ADepthOfTenThousandDoesNotOverflowTheStack) {
    std::string items;
    for (int i = 0; i < 10000; ++i)
        items += "<item text=\"" + std::to_string(i) + "\">";
    for (int i = 0; i < 10000; ++i)
        items += "</item>";
    mTree = load<TreeView>(Box2(10, 10, 210, 210), ">" + items + "</control>");
    ASSERT_EQ(mTree->getItemCount(), 10000);
    EXPECT_EQ(mTree->getItem(9999)->depth, 9999);
    click(100, row(0));
    for (int i = 0; i < 9999; ++i)
        mTree->setOpen(i, true);
    EXPECT_EQ(mTree->getRowCount(), 10000);
    key(KEY_END);
    EXPECT_EQ(selected(), "9999");
    key(KEY_LEFT);
    EXPECT_EQ(selected(), "9998");
    for (int i = 0; i < 3; ++i)
        mTree->addItem(9999, "", "deeper");
    EXPECT_EQ(mTree->getItemCount(), 10003);
}

TEST_F(TreeViewTest, WithInactiveSetNothingIsSelected) {
    tree();
    mTree->setInactive(true);
    click(100, row(1));
    EXPECT_EQ(selected(), "");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(TreeViewTest, APageOfAnEnormousTreeReachesItsEnds) {
    tree(1e30f);
    click(100, row(0));
    key(KEY_RIGHT); // opens it
    key(KEY_DOWN);
    key(KEY_PAGEDOWN);
    EXPECT_EQ(selected(), "e");
    key(KEY_PAGEUP);
    EXPECT_EQ(selected(), "a");
}

TEST_F(TreeViewTest, MayBeDeletedByItsOwnAction) {
    struct Deleter : Callback {
        Workspace* root = nullptr;
        void controlAction(Control*, Action) override { root->deleteControls(); }
    } deleter;
    deleter.root = &mRoot;
    tree()->setCallback(&deleter);
    click(100, row(1));
    EXPECT_EQ(mRoot.getControlSize(), 0u);
}
