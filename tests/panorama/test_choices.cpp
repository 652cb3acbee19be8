#include "inputs.h"
#include "pan_checkbox.h"
#include "pan_context.h"
#include "pan_radiobutton.h"

using namespace zentrak;
using namespace zentrak::panorama;
using namespace zentrak::display; // the keys
using mathbase::Box2;

namespace {

class ChoicesTest : public test::InputTest {
protected:
    // Three options of 18 pixels from y = 10 on.
    template <class Type>
    Type* three() {
        return load<Type>(Box2(10, 10, 110, 100), "><option name=\"a\"/><option name=\"b\" "
                                                  "checked=\"true\"/><option name=\"c\"/></control>");
    }
    static float row(int index) { return 19.0f + 18.0f * float(index); }

    template <class Type>
    static std::string marks(const Type* box) {
        std::string result;
        for (int i = 0; i < box->getOptionCount(); ++i)
            result += box->getChecked(i) ? 'x' : '-';
        return result;
    }
};

} // namespace

TEST_F(ChoicesTest, OptionsAreRead) {
    RadioButton* radio = three<RadioButton>();
    EXPECT_EQ(radio->getType(), "radiobutton");
    EXPECT_EQ(marks(radio), "-x-");
    EXPECT_EQ(radio->getOption(0), "a");
    EXPECT_EQ(radio->getOption(2), "c");
    EXPECT_EQ(radio->getSelected(), 1);
    reload(radio, "name=\"Heading\"/>");
    EXPECT_EQ(marks(radio), "-x-");
    EXPECT_EQ(radio->getCaption(), "Heading");
    reload(radio, "><option name=\"x\" checked=\"true\"/><option name=\"y\" checked=\"true\"/><option "
                  "checked=\"yes\"/></control>");
    EXPECT_EQ(marks(radio), "-x-");
    EXPECT_EQ(radio->getOption(1), "y");

    Checkbox* check = three<Checkbox>();
    EXPECT_EQ(check->getType(), "checkbox");
    reload(check, "><option checked=\"true\"/><option checked=\"true\"/></control>");
    EXPECT_EQ(marks(check), "xx");
    for (Control* each : {static_cast<Control*>(radio), static_cast<Control*>(check)}) {
        Control* clone = each->clone();
        EXPECT_EQ(clone->getType(), each->getType());
        delete clone;
    }
}

TEST_F(ChoicesTest, AClickOnARadioButtonChoosesOneOfThem) {
    RadioButton* radio = three<RadioButton>();
    press(20, row(2));
    EXPECT_EQ(marks(radio), "-x-");
    EXPECT_EQ(takeActions(), Actions());
    release(90, row(2));
    EXPECT_EQ(marks(radio), "--x");
    EXPECT_EQ(takeActions(), Actions({8}));
    EXPECT_EQ(mSource, radio);
    click(20, row(2)); // which it is already
    EXPECT_EQ(marks(radio), "--x");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ChoicesTest, AClickOnACheckboxTurnsOneOver) {
    Checkbox* check = three<Checkbox>();
    click(20, row(0));
    EXPECT_EQ(marks(check), "xx-");
    click(20, row(1));
    EXPECT_EQ(marks(check), "x--");
    EXPECT_EQ(takeActions(), Actions({8, 8}));
}

TEST_F(ChoicesTest, AReleaseOutsideCancels) {
    Checkbox* check = three<Checkbox>();
    press(20, row(0));
    EXPECT_EQ(check->mPushedBox, 0);
    release(20, row(1));
    EXPECT_EQ(check->mPushedBox, -1);
    press(20, row(0));
    release(400, 400);
    EXPECT_EQ(check->mPushedBox, -1);
    press(400, 400);
    release(20, row(0));
    press(20, row(0), 1);
    release(20, row(0), 1);
    EXPECT_EQ(marks(check), "-x-");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ChoicesTest, APressThatAMenuTakesOverChoosesNothing) {
    RadioButton* radio = three<RadioButton>();
    press(20, row(0));
    EXPECT_EQ(radio->mPushedBox, 0);
    Context menu;
    mRoot.setContext(&menu);
    EXPECT_EQ(radio->mPushedBox, -1);
    mRoot.setContext(nullptr);
    release(20, row(0));
    EXPECT_EQ(marks(radio), "-x-");
}

TEST_F(ChoicesTest, TheOptionUnderTheMouseIsMarked) {
    RadioButton* radio = three<RadioButton>();
    move(20, row(1));
    EXPECT_EQ(radio->mHoverBox, 1);
    move(20, row(3));
    EXPECT_EQ(radio->mHoverBox, -1);
    move(20, row(2));
    EXPECT_EQ(radio->mHoverBox, 2);
    move(300, 300);
    EXPECT_EQ(radio->mHoverBox, -1);
}

TEST_F(ChoicesTest, AHeadingMovesTheOptionsDown) {
    RadioButton* radio = three<RadioButton>();
    radio->setCaption("Heading");
    click(20, row(0));
    EXPECT_EQ(marks(radio), "-x-");
    click(20, row(1));
    EXPECT_EQ(marks(radio), "x--");
}

TEST_F(ChoicesTest, TheKeysChooseOnceItWasClicked) {
    RadioButton* radio = three<RadioButton>();
    key(KEY_DOWN); // it has the focus only because it was loaded last
    EXPECT_EQ(marks(radio), "-x-");
    click(20, row(0));
    EXPECT_EQ(key(KEY_DOWN), 1);
    EXPECT_EQ(marks(radio), "-x-");
    key(KEY_DOWN);
    key(KEY_DOWN);
    EXPECT_EQ(marks(radio), "--x");
    key(KEY_UP);
    EXPECT_EQ(marks(radio), "-x-");
    EXPECT_EQ(takeActions(), Actions({8, 8, 8, 8}));

    Checkbox* check = add<Checkbox>(Box2(200, 10, 300, 100));
    check->addOption("a", false);
    check->addOption("b", false);
    click(210, row(0));
    EXPECT_EQ(marks(check), "x-");
    key(KEY_DOWN);
    key(KEY_SPACE);
    EXPECT_EQ(marks(check), "xx");
    EXPECT_EQ(marks(radio), "-x-");
    click(500, 500); // on nothing: keys are passed on to the listeners after the controls
    EXPECT_EQ(key(KEY_SPACE), 0);
    EXPECT_EQ(marks(check), "xx");
}

TEST_F(ChoicesTest, WithoutOptionsOrOutOfRangeNothingHappens) {
    RadioButton* radio = load<RadioButton>(Box2(10, 10, 110, 100), "/>");
    click(20, 20);
    key(KEY_DOWN);
    key(KEY_SPACE);
    EXPECT_EQ(radio->getSelected(), -1);
    EXPECT_EQ(radio->getOption(0), "");
    EXPECT_EQ(radio->getOption(-1), "");
    EXPECT_FALSE(radio->getChecked(5));
    radio->setChecked(5, true);
    radio->setChecked(-1, true);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ChoicesTest, OptionsWithoutNamesCanBeChosen) {
    RadioButton* radio = load<RadioButton>(Box2(10, 10, 110, 100), "><option/><option/></control>");
    click(20, row(1));
    EXPECT_EQ(marks(radio), "-x");
    EXPECT_EQ(radio->getOption(1), "");
}

TEST_F(ChoicesTest, WithInactiveSetNothingIsChosen) {
    RadioButton* radio = three<RadioButton>();
    click(20, row(0));
    takeActions();
    radio->setInactive(true);
    click(20, row(2));
    key(KEY_DOWN);
    EXPECT_EQ(marks(radio), "x--");
    EXPECT_EQ(takeActions(), Actions());
}
