#include "inputs.h"
#include "pan_textinput.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::panorama;
using namespace zentrak::display; // the keys
using mathbase::Box2;

namespace {

class TextInputTest : public test::InputTest {
protected:
    TextInput* mInput = nullptr;

    TextInputTest() { TextInput::setClipboard(""); }

    // A field with the focus.
    TextInput* field(const std::string& text, TextInput::Kind kind = TextInput::TEXT) {
        mInput = add<TextInput>(Box2(10, 10, 110, 30));
        mInput->setKind(kind);
        mInput->setText(text);
        mInput->takeKeys();
        return mInput;
    }

    // The text with the caret as "|" and, with a selection, the anchor as "^".
    std::string shown() const {
        std::string text = mInput->getText();
        const size_t caret = mInput->getCaret(), anchor = mInput->getAnchor();
        if (anchor > caret)
            text.insert(anchor, "^");
        text.insert(caret, "|");
        if (anchor < caret)
            text.insert(anchor, "^");
        return text;
    }
    std::string after(int code, int modifiers = 0) {
        EXPECT_EQ(key(code, modifiers), 1);
        return shown();
    }
};

constexpr int SHIFT = KEYMOD_LSHIFT, CTRL = KEYMOD_RCTRL;

} // namespace

TEST_F(TextInputTest, ReadsTextTypeAndInactive) {
    TextInput* input = load<TextInput>(Box2(0, 0, 50, 20), "text=\"12.5x\" type=\"numeric\"/>");
    EXPECT_EQ(input->getType(), "textinput");
    EXPECT_EQ(input->getText(), "12.5x");
    EXPECT_EQ(input->getKind(), TextInput::NUMERIC);
    EXPECT_EQ(input->getValue(), 12.5f);
    EXPECT_FALSE(input->getInactive());
    reload(input, "type=\"password\" inactive=\"true\"/>");
    EXPECT_EQ(input->getText(), "12.5x");
    EXPECT_EQ(input->getKind(), TextInput::PASSWORD);
    EXPECT_TRUE(input->getInactive());
    reload(input, "type=\"any\" inactive=\"no\"/>");
    EXPECT_EQ(input->getKind(), TextInput::TEXT);
    EXPECT_FALSE(input->getInactive());
    Control* clone = input->clone();
    EXPECT_NE(dynamic_cast<TextInput*>(clone), nullptr);
    delete clone;
}

TEST_F(TextInputTest, ItsValueIsTheNumberAtTheStartOfItsText) {
    field("");
    EXPECT_EQ(mInput->getValue(), 0.0f);
    mInput->setText("-1.5e2 metres");
    EXPECT_EQ(mInput->getValue(), -150.0f);
    {
        const test::CommaLocale comma; // if available
        mInput->setText("2.5");
        EXPECT_EQ(mInput->getValue(), 2.5f);
    }
    for (const char* text : {"nan", "inf", "-1e999"}) {
        mInput->setText(text);
        EXPECT_FALSE(std::isfinite(mInput->getValue())) << text;
    }
}

TEST_F(TextInputTest, TypingInsertsAtTheCaretAndSendsAction8) {
    field("ac");
    EXPECT_EQ(shown(), "ac|");
    key(KEY_LEFT);
    EXPECT_EQ(type("b"), 1);
    EXPECT_EQ(shown(), "ab|c");
    EXPECT_EQ(takeActions(), Actions({8}));
    EXPECT_EQ(mSource, mInput);
    type("\xe4\xff\xa0");
    EXPECT_EQ(shown(), "ab\xe4\xff\xa0|c");
}

TEST_F(TextInputTest, CharactersOutsideLatin1AreIgnored) {
    field("a");
    for (const int character : {-1, 0, 9, 31, 127, 128, 159, 256, 0x20AC, 0x1F600}) {
        panorama::Event event;
        event.type = "keychardown";
        event.character = character;
        send(event);
    }
    EXPECT_EQ(shown(), "a|");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(TextInputTest, TheCaretMovesByCharactersWordsAndToTheEnds) {
    field("one two-three");
    EXPECT_EQ(after(KEY_LEFT), "one two-thre|e");
    EXPECT_EQ(after(KEY_LEFT, CTRL), "one two-|three");
    EXPECT_EQ(after(KEY_LEFT, CTRL), "one two|-three");
    EXPECT_EQ(after(KEY_LEFT, CTRL), "one |two-three");
    EXPECT_EQ(after(KEY_LEFT, CTRL), "|one two-three");
    EXPECT_EQ(after(KEY_LEFT, CTRL), "|one two-three");
    EXPECT_EQ(after(KEY_LEFT), "|one two-three");
    EXPECT_EQ(after(KEY_RIGHT, CTRL), "one |two-three");
    EXPECT_EQ(after(KEY_RIGHT), "one t|wo-three");
    EXPECT_EQ(after(KEY_RIGHT, CTRL), "one two|-three");
    EXPECT_EQ(after(KEY_END), "one two-three|");
    EXPECT_EQ(after(KEY_RIGHT), "one two-three|");
    EXPECT_EQ(after(KEY_RIGHT, CTRL), "one two-three|");
    EXPECT_EQ(after(KEY_HOME), "|one two-three");
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(TextInputTest, ShiftSelects) {
    field("one two");
    EXPECT_EQ(after(KEY_LEFT, SHIFT), "one tw|o^");
    EXPECT_EQ(after(KEY_LEFT, SHIFT | CTRL), "one |two^");
    EXPECT_EQ(mInput->getSelection(), "two");
    EXPECT_EQ(after(KEY_HOME, SHIFT), "|one two^");
    EXPECT_EQ(after(KEY_RIGHT, SHIFT), "o|ne two^");
    EXPECT_EQ(after(KEY_END, SHIFT), "one two|");
    key(KEY_HOME);
    EXPECT_EQ(after(KEY_END, SHIFT), "^one two|");
    EXPECT_EQ(after(KEY_a, CTRL), "^one two|");
}

TEST_F(TextInputTest, AnArrowWithoutShiftGoesToTheSideOfTheSelection) {
    field("abcdef");
    mInput->select(2, 4);
    EXPECT_EQ(after(KEY_LEFT), "ab|cdef");
    mInput->select(2, 4);
    EXPECT_EQ(after(KEY_RIGHT), "abcd|ef");
    mInput->select(4, 2);
    EXPECT_EQ(after(KEY_RIGHT), "abcd|ef");
}

TEST_F(TextInputTest, BackspaceAndDeleteRemoveACharacterAWordOrTheSelection) {
    field("one two three");
    EXPECT_EQ(after(KEY_BACKSPACE), "one two thre|");
    EXPECT_EQ(after(KEY_BACKSPACE, CTRL), "one two |");
    EXPECT_EQ(after(KEY_HOME), "|one two ");
    takeActions();
    EXPECT_EQ(after(KEY_BACKSPACE), "|one two ");
    EXPECT_EQ(after(KEY_BACKSPACE, CTRL), "|one two ");
    EXPECT_EQ(takeActions(), Actions());
    EXPECT_EQ(after(KEY_DEL), "|ne two ");
    EXPECT_EQ(after(KEY_DEL, CTRL), "|two ");
    EXPECT_EQ(takeActions(), Actions({8, 8}));
    mInput->select(1, 3);
    EXPECT_EQ(after(KEY_DEL), "t| ");
    mInput->select(0, 2);
    EXPECT_EQ(after(KEY_BACKSPACE), "|");
    EXPECT_EQ(after(KEY_DEL), "|");
    EXPECT_EQ(after(KEY_BACKSPACE), "|");
}

TEST_F(TextInputTest, TypingReplacesTheSelection) {
    field("one two");
    mInput->select(4, 7);
    type("2");
    EXPECT_EQ(shown(), "one 2|");
    key(KEY_a, CTRL);
    type("x");
    EXPECT_EQ(shown(), "x|");
}

TEST_F(TextInputTest, TheClipboardIsSharedByTheFieldsOfTheProgram) {
    field("one two");
    EXPECT_EQ(after(KEY_c, CTRL), "one two|");
    EXPECT_EQ(TextInput::getClipboard(), "");
    mInput->select(0, 3);
    EXPECT_EQ(after(KEY_c, CTRL), "^one| two");
    EXPECT_EQ(TextInput::getClipboard(), "one");
    EXPECT_EQ(takeActions(), Actions());
    mInput->select(3, 7);
    EXPECT_EQ(after(KEY_x, CTRL), "one|");
    EXPECT_EQ(TextInput::getClipboard(), " two");
    EXPECT_EQ(takeActions(), Actions({8}));
    field("[]");
    key(KEY_LEFT);
    EXPECT_EQ(after(KEY_v, CTRL), "[ two|]");
    EXPECT_EQ(after(KEY_v, CTRL), "[ two two|]");
    EXPECT_EQ(takeActions(), Actions({8, 8}));
}

TEST_F(TextInputTest, CtrlAndALetterTypesNothing) {
    field("a");
    panorama::Event event;
    event.type = "keychardown";
    event.character = 'b';
    event.control = CTRL;
    send(event);
    EXPECT_EQ(shown(), "a|");
    event.control = CTRL | KEYMOD_RALT; // as some layouts make their third level
    send(event);
    EXPECT_EQ(shown(), "ab|");
}

TEST_F(TextInputTest, ANumericFieldTakesOnlyWhatCanBecomeANumber) {
    field("", TextInput::NUMERIC);
    type("a-b1c,2.5");
    EXPECT_EQ(shown(), "-1.25|");
    EXPECT_EQ(mInput->getValue(), -1.25f);
    type("e--3e4");
    EXPECT_EQ(shown(), "-1.25e-34|");
    key(KEY_HOME);
    type("+-5");
    EXPECT_EQ(shown(), "|-1.25e-34");
    TextInput::setClipboard("twelve");
    key(KEY_v, CTRL);
    EXPECT_EQ(shown(), "|-1.25e-34");
    key(KEY_a, CTRL);
    TextInput::setClipboard("12");
    key(KEY_v, CTRL);
    EXPECT_EQ(shown(), "12|");
}

TEST_F(TextInputTest, ANumericFieldWithAnInvalidTextCanBeCorrected) {
    field("abc1", TextInput::NUMERIC);
    type("2");
    EXPECT_EQ(shown(), "abc1|");
    key(KEY_HOME);
    key(KEY_DEL);
    EXPECT_EQ(shown(), "|bc1");
    key(KEY_DEL, CTRL);
    type("7");
    EXPECT_EQ(shown(), "7|");
}

TEST_F(TextInputTest, APasswordIsNotCopiedAndIsOneWord) {
    field("my secret", TextInput::PASSWORD);
    TextInput::setClipboard("old");
    key(KEY_a, CTRL);
    key(KEY_c, CTRL);
    key(KEY_x, CTRL);
    EXPECT_EQ(TextInput::getClipboard(), "old");
    EXPECT_EQ(shown(), "^my secret|");
    EXPECT_EQ(after(KEY_LEFT, CTRL), "|my secret");
    EXPECT_EQ(after(KEY_RIGHT, CTRL), "my secret|");
    EXPECT_EQ(after(KEY_v, CTRL), "my secretold|");
}

TEST_F(TextInputTest, KeysGoToItOnlyOnceItWasClicked) {
    mInput = add<TextInput>(Box2(10, 10, 110, 30));
    mInput->setText("x");
    type("a");
    key(KEY_BACKSPACE);
    EXPECT_EQ(shown(), "x|");
    mInput->setText("");
    click(20, 20);
    EXPECT_EQ(type("a"), 1);
    EXPECT_EQ(shown(), "a|");
    TextInput* other = add<TextInput>(Box2(10, 50, 110, 70));
    type("b"); // the new one has the focus only because it was loaded last
    EXPECT_EQ(other->getText(), "");
    click(20, 60);
    type("c");
    EXPECT_EQ(other->getText(), "c");
    EXPECT_EQ(mInput->getText(), "a");
}

TEST_F(TextInputTest, KeysThatItCanUseGoNoFurtherAndTabDoes) {
    field("a");
    for (const int used : {int(KEY_q), int(KEY_SPACE), int(KEY_LEFT), int(KEY_HOME), 0xC4})
        EXPECT_EQ(key(used), 1) << used;
    EXPECT_EQ(key(KEY_TAB), 0);
    for (const int other : {int(KEY_F1), int(KEY_UNKNOWN), -1, int(KEY_LSHIFT), int(KEY_PAGEUP)})
        key(other);
    key(KEY_t, CTRL);
    EXPECT_EQ(shown(), "|a");
}

TEST_F(TextInputTest, ReturnAndEscLeaveTheField) {
    for (const int leaving : {KEY_ENTER, KEY_KP_ENTER, KEY_ESC}) {
        field("abc");
        key(KEY_a, CTRL);
        EXPECT_EQ(key(leaving), 1);
        EXPECT_EQ(shown(), "abc|");
        EXPECT_FALSE(mInput->hasKeys());
        EXPECT_EQ(key(leaving), 0);
        EXPECT_EQ(type("x"), 0);
        EXPECT_EQ(takeActions(), Actions());
    }
}

TEST_F(TextInputTest, WithInactiveSetItTakesNothing) {
    field("abc");
    mInput->setInactive(true);
    click(20, 20);
    type("x");
    key(KEY_BACKSPACE);
    EXPECT_EQ(mInput->getText(), "abc");
}

TEST_F(TextInputTest, ControlBytesAreDropped) {
    field(std::string("a\0b\nc\td\x7f\x80\x9f", 10) + "e");
    EXPECT_EQ(mInput->getText(), "abcde");
    TextInput::setClipboard("\r\n\x01!");
    key(KEY_v, CTRL);
    EXPECT_EQ(mInput->getText(), "abcde!");
}

TEST_F(TextInputTest, ATextOfAMegabyteCanBeEditedAndNoneIsLonger) {
    field(std::string(TextInput::LONGEST - 1, 'a'));
    type("bc");
    EXPECT_EQ(mInput->getText().size(), TextInput::LONGEST);
    EXPECT_EQ(mInput->getText().back(), 'b');
    EXPECT_EQ(key(KEY_LEFT, CTRL), 1);
    EXPECT_EQ(mInput->getCaret(), 0u);
    key(KEY_a, CTRL);
    key(KEY_c, CTRL);
    key(KEY_END);
    key(KEY_v, CTRL);
    EXPECT_EQ(mInput->getText().size(), TextInput::LONGEST);
    key(KEY_a, CTRL);
    key(KEY_v, CTRL);
    EXPECT_EQ(mInput->getText().size(), TextInput::LONGEST);
    mInput->setText(std::string(3 * TextInput::LONGEST, 'x'));
    EXPECT_EQ(mInput->getText().size(), TextInput::LONGEST);
}

TEST_F(TextInputTest, PositionsBeyondTheEndAreTheEnd) {
    field("abc");
    mInput->select(99, 1);
    EXPECT_EQ(shown(), "a|bc^");
    mInput->select(0, size_t(-1));
    EXPECT_EQ(shown(), "^abc|");
    mInput->setText("");
    EXPECT_EQ(shown(), "|");
}

TEST_F(TextInputTest, MayBeDeletedByItsOwnAction) {
    struct Deleter : Callback {
        Workspace* root = nullptr;
        void controlAction(Control*, Action) override { root->deleteControls(); }
    } deleter;
    deleter.root = &mRoot;
    field("abc")->setCallback(&deleter);
    type("x");
    EXPECT_EQ(mRoot.getControlSize(), 0u);
    field("abc")->setCallback(&deleter);
    key(KEY_BACKSPACE);
    EXPECT_EQ(mRoot.getControlSize(), 0u);
}
