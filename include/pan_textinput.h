// A field for one line of text.
#pragma once

#include "pan_inputcontrol.h"

#include <string>
#include <vector>

namespace zentrak::panorama {

// Text is Latin-1, a byte a character; control bytes are dropped. There is a caret, and a selection from the
// anchor to it, which the mouse and Shift make: a double click selects a word. Home, End, the arrows, with
// Ctrl by words, Backspace and Delete, with Ctrl a word, Ctrl+A, C, X and V; Return and Esc leave the field.
// A text that is too long scrolls with the caret. Each change by the user sends action 8.
class TextInput : public InputControl {
public:
    enum Kind : int {
        TEXT = 0,
        NUMERIC = 1,  // the user can only type what is, or can become, a number; a comma is a point
        PASSWORD = 2, // shows stars; isn't copied, and counts as one word
    };

    static constexpr size_t LONGEST = size_t(1) << 20; // characters; what is longer is cut

    TextInput();

    Control* clone() override; // a plain new one, owned by the caller

    // "text"; "type" with "numeric" or "password"; "inactive" with "true".
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override; // 1 for what it takes
    void draw() override;
    void leaveKeys() override;

    const std::string& getText() const { return mValue; }
    void setText(const std::string& text); // of any form; sends nothing, and leaves the caret at its end
    float getValue() const;                // atof of the text

    Kind getKind() const { return mKind; }
    void setKind(Kind kind);

    // Positions are between characters: 0 is before the first. One that is too large is the end.
    size_t getCaret() const { return mCaret; }
    size_t getAnchor() const { return mAnchor; } // the caret itself without a selection
    void select(size_t anchor, size_t caret);
    std::string getSelection() const;

    // The clipboard of the program: shared by the fields, and separate from the system's.
    static const std::string& getClipboard();
    static void setClipboard(const std::string& text);

private:
    mathbase::Box2 getInside() const; // where the text is, in window coordinates
    void measure();                   // mEdges, where it is not up to date
    double edge(size_t position);
    size_t positionAt(float x);
    size_t wordBefore(size_t position) const;
    size_t wordBehind(size_t position) const;
    void selectWord(size_t position);
    void moveCaret(size_t position, bool extend);
    bool replaceSelection(const std::string& text); // by the user; whether that changed anything
    bool deleteTo(size_t position);                 // the selection, or, without one, up to there
    void showCaret();
    int handleKey(const Event& event);
    bool handleEdit(const Event& event, bool& changed);
    void changed();

    std::string mValue;
    Kind mKind = TEXT;
    size_t mCaret = 0;
    size_t mAnchor = 0;
    bool mByWords = false;      // the press that is held began with a double click
    double mScroll = 0;         // pixels of the text to the left of the field
    bool mCaretMoved = true;    // it has to be scrolled into view
    float mCaretTime = 0;       // when it last moved, seconds: it blinks from there
    std::vector<double> mEdges; // where each character begins, and the last ends, pixels; or empty
    std::string mShown;         // what is drawn of it
};

} // namespace zentrak::panorama
