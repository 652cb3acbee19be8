// What an author does to a script: every edit is a command that can be undone. No graphics.
#pragma once

#include "studio_document.h"

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zentrak::studio {

// Edits act on the selection unless they say otherwise. One that would change nothing adds no undo step.
// Times are seconds.
class Editor {
public:
    static constexpr double SHORTEST = 0.01; // of a span, by the mouse; typed it may be any

    enum class Edge { LEFT, RIGHT };

    Editor();

    const Document& getDocument() const { return mDocument; }

    // Begins with the text of a file: clears undo and selection. Throws as Document::load.
    void open(std::string text);
    // The file as it is on disk now, as a step that can be undone. Throws as Document::load.
    void replace(std::string text, const std::string& label);
    bool isSaved() const { return mDocument.getText() == mSavedText; }
    const std::string& getSavedText() const { return mSavedText; } // as on disk
    void setSavedText(std::string text);

    // Selection: ids, in no order.
    const std::vector<uint32_t>& getSelection() const { return mSelection; }
    bool isSelected(uint32_t id) const;
    void select(std::vector<uint32_t> ids);
    void toggle(uint32_t id);
    std::vector<int> getSelected() const; // as indices, in the order of the text
    std::vector<int> getSelected(Kind kind) const;

    // The labels say what undo and redo would do; empty if there is nothing.
    bool undo();
    bool redo();
    std::string getUndoLabel() const;
    std::string getRedoLabel() const;
    size_t getUndoCount() const { return mUndo.size(); }

    // All edits of a gesture are one undo step: each replaces the one before, and starts from the text at the
    // beginning of the gesture. Edits that take an index end it.
    void beginGesture();
    void endGesture();
    void cancelGesture(); // and undoes it
    bool inGesture() const { return mInGesture; }

    // Values of elements: "name", "start", "end", "time", "value", "repeat", "delay", "type", "state"...
    void set(const std::vector<int>& elements, const std::string& attribute, const std::string& value);
    void setLengths(const std::vector<int>& spans, double length); // the starts stay
    void rename(int element, const std::string& name);             // also a section
    // Moves what is selected, with all that is in it; a spline moves all its keys. `value` is for keys.
    // Nothing is moved to before time 0 of its parent.
    void move(double seconds, double value);
    void resize(Edge edge, double seconds);  // spans
    void stretch(Edge edge, double seconds); // spans, and the times of all that is in them
    void toggleEnabled();                    // spans
    void reorder(int step);                  // the one span or section that is selected: -1 earlier, 1 later

    // New elements; they are selected. `parent` is 0 (the script) or a span; `time` is in the parent's time.
    // The span gets a curve of the value 1 for each of `curves`.
    void addSpan(int parent, const std::string& name, double start, double end,
                 const std::vector<std::string>& curves = {});
    void addTrigger(int span, const std::string& name, const std::string& value, double time);
    void addSpline(int span, const std::string& name, double value);
    void addKey(int spline, double time, double value);
    void addSection(int before, const std::string& name); // before an outermost element; 0: at the end
    void addBookmark(double time, const std::string& name);
    void setTempo(const Tempo& tempo);

    void removeSelected();   // a spline goes with its last key
    void split(double time); // selected spans that cover this time of the show
    void copy() { mClipboard = getCopy(); }
    void cut();
    bool canPaste() const { return !mClipboard.empty(); }
    void paste(double time); // the first of it at this time of the show
    void duplicate();        // each span after itself, all else where it is

    // The value of a curve as the player has it.
    double evaluate(int spline, double time) const {
        return double(makeSpline(mDocument, spline).evaluate(float(time)));
    }

private:
    // An element that was copied.
    struct Copied {
        Kind kind;
        std::string text;
        double time;   // of the show at which it began
        double length; // of a span
    };
    struct Step {
        std::string label;
        std::vector<Document::Change> changes; // that take it back, or bring it back
        std::vector<int> before, after;        // selected indices
    };

    Document mDocument;
    std::string mSavedText;
    std::vector<uint32_t> mSelection;
    std::vector<Step> mUndo, mRedo;
    std::vector<Copied> mClipboard;
    bool mInGesture = false;
    bool mGestureChanged = false; // mUndo.back() is the gesture's

    void start(); // every edit begins with it
    void perform(const std::string& label, std::vector<Document::Change> changes, bool selectMade = false);
    bool step(std::vector<Step>& from, std::vector<Step>& to, bool undoing);
    void selectIndices(const std::vector<int>& indices);
    void prune();
    std::vector<int> getOutermost() const;
    std::vector<Copied> getCopy() const;
    void insert(const std::string& label, int parent, int after, const std::string& text);
    void insertBefore(const std::string& label, int next, const std::string& text);
    void insertFirst(const std::string& label, int parent, const std::string& text);
    void setNumber(std::vector<Document::Change>& changes, int element, const char* name, float old,
                   double value) const;
    void moveElement(std::vector<Document::Change>& changes, int element, double seconds, double value) const;
    static std::string getMoved(const Copied& copied, double start);
    std::string getSecondHalf(int span, double at) const;
    void cutFirstHalf(std::vector<Document::Change>& changes, int span, double at) const;
};

// Whichever is nearer to `value`; `best` if both are equally near.
double nearest(double value, double best, double candidate);

// Where a time snaps to.
struct Snap {
    bool on = true;
    double reach = 0; // seconds
    Tempo tempo;
    double step = 0;             // seconds between the lines of the grid; 0: none
    std::vector<double> targets; // further times: edges, the time now

    // The nearest of all within reach, or `time` itself.
    double operator()(double time) const;
    // `time`, changed by as little as puts one of these edges, shifted by it, on a target.
    double shift(double time, std::span<const double> edges) const;
};

// The start and end, in the show's time, of every span and bookmark that is neither selected nor in a
// selected span.
std::vector<double> getEdges(const Editor& editor);

} // namespace zentrak::studio
