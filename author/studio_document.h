// The script file of a show as text, with the position of every element in it: what isn't edited keeps every
// byte.
#pragma once

#include "script_spline.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zentrak::studio {

enum class Kind : uint8_t {
    ROOT,
    SPAN,     // <effect>, in the root or in another span
    TRIGGER,  // of a span
    SPLINE,   // of a span
    KEY,      // of a spline
    SECTION,  // a comment between the outermost spans: its text heads those after it
    BOOKMARK, // <bookmark name time>, in the root; the player passes over it, as over <tempo bpm beats start>
    TEMPO,
    OTHER
};

// One element. The values are those that the player reads, and count for the kinds named.
struct Element {
    Kind kind = Kind::OTHER;
    uint32_t id = 0; // stays the same while the element lives, whatever is edited around it; never 0
    int parent = -1; // index into Document::getElements
    int next = 0;    // index past its last descendant
    bool closed = true;
    size_t from = 0;      // bytes of the text: its start tag,
    size_t tagTo = 0;     // the end of that,
    size_t contentTo = 0; // its end tag (tagTo of one without),
    size_t to = 0;        // and the end of all

    std::string name;    // the attribute, or the text of a section
    std::string value;   // trigger
    float start = 0;     // seconds: span, trigger, tempo; "time" of a key and of a bookmark
    float end = 0;       // seconds: span
    float number = 0;    // value of a key; beats a minute of a tempo
    float delay = 0;     // seconds: trigger
    int repeat = 1;      // trigger
    int beats = 4;       // of a bar: tempo
    int mode = 1;        // mathbase::SplineBaseMode: spline
    bool enabled = true; // span
};

// Where a tempo puts the beats.
struct Tempo {
    float bpm = 120;
    int beats = 4;
    float start = 0; // seconds: the first beat of bar 0

    double getBeat() const { return 60.0 / double(bpm); } // seconds
    double getBar() const { return getBeat() * beats; }
};

class Document {
public:
    // Bytes [at, at + length) become `text`.
    struct Change {
        size_t at = 0;
        size_t length = 0;
        std::string text;
        int element = -1; // set: all of it is within the attributes of this element
    };

    // Something that the player would refuse or pass over.
    struct Problem {
        int line;
        std::string text;
    };

    // An empty script.
    Document();

    // Throws zentrak::Exception, "line 12: ...", and stays unchanged, if the text isn't a script.
    void load(std::string text);

    const std::string& getText() const { return mText; }
    const std::vector<Element>& getElements() const {
        return mElements;
    } // in the order of the text; root first
    const Element& operator[](int index) const { return mElements[size_t(index)]; }
    int getSize() const { return int(mElements.size()); }
    int find(uint32_t id) const;                              // its index, or -1
    std::vector<int> getChildren(int index, Kind kind) const; // indices, in the order of the text
    uint32_t getVersion() const { return mVersion; }          // another one after each change

    // Applies changes whose positions are those of the present text. They don't overlap, but one inside a
    // range that another removes is left out. Returns the changes that undo them. Throws as load does, with
    // nothing changed, if the result isn't a script.
    std::vector<Change> apply(std::vector<Change> changes);
    // The outermost of the elements that the last apply has made, as indices.
    const std::vector<int>& getMade() const { return mMade; }

    // Seconds of the show at which the local time of `index` is 0: the sum of the spans around it.
    double getOrigin(int index) const;
    // Seconds of the show.
    double getStart(int index) const { return getOrigin(index) + double((*this)[index].start); }
    double getEnd(int index) const { return getOrigin(index) + double((*this)[index].end); }
    bool isInside(int index, int ancestor) const;
    int getLine(size_t position) const; // from 1 on
    Tempo getTempo() const;
    std::vector<Problem> getProblems() const;

    // The change that sets an attribute, or adds it. Line ends become blanks; a quote that can't be kept
    // becomes one of the other kind.
    Change setAttribute(int index, std::string_view name, std::string_view value) const;
    // The change that removes an element, with its line if there is nothing else on it.
    Change erase(int index) const;
    // The change that puts the text of an element, indented from 0, into `parent`: after its child `after`,
    // or, with -1, after all others. None for a parent that can't have children.
    std::optional<Change> insert(int parent, int after, std::string_view element) const;
    // The text of an element with the indent of its first line taken off the others.
    std::string getElementText(int index) const;

private:
    std::string mText;
    std::vector<Element> mElements;
    std::vector<int> mIndexOf; // by id; -1 for one that is gone
    std::vector<int> mMade;
    uint32_t mLastId = 0;
    uint32_t mVersion = 0;

    bool applyToTags(const std::vector<Change>& changes, const std::string& text);
    bool applyToChildren(const std::vector<Change>& changes, const std::string& text);
    void movePositions(const std::vector<Change>& changes);
    void replaceElements(int parent, int first, int last, std::vector<Element> made, size_t delta);
    void numberElements(std::vector<Element>& elements, int old, int end, int first,
                        const std::vector<Change>& changes);
    void indexIds();
    std::string getIndent(size_t position) const;
    std::string getIndentOfChildren(int parent) const;
    const char* getLineEnd() const;
};

// Sets an attribute in the text of a start tag at [from, to). Returns the change in bytes of the text.
Document::Change changeAttribute(std::string_view text, size_t from, size_t to, std::string_view name,
                                 std::string_view value);

// A curve as the player has it.
script::Spline makeSpline(const Document& document, int index);

// At most four decimals, without trailing zeros.
std::string formatNumber(double number);
// The whole text as a finite number, with a point or a comma; none if it isn't one.
std::optional<double> parseNumber(std::string_view text);
// A time as a user types it: in seconds, or in bars with "b", "bar" or "bars" after the number.
struct TypedTime {
    double seconds;
    bool inBars;
};
std::optional<TypedTime> parseTime(std::string_view text, const Tempo& tempo);

// Text that fits into a comment: without "--". Never empty.
std::string toComment(std::string_view text);

} // namespace zentrak::studio
