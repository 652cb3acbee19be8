// The timeline: ruler, wave, and a row for each section, span and curve.
#pragma once

#include "pan_control.h"
#include "studio_editor.h"
#include "studio_paint.h"
#include "studio_show.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zentrak::studio {

class Timeline : public panorama::Control {
public:
    static constexpr float LABELS_WIDTH = 210; // pixels before the time axis
    static constexpr float RULER_HEIGHT = 20;  // of its height
    static constexpr float WAVE_HEIGHT = 46;
    static constexpr float BAR_HEIGHT = 22;   // of a row with a bar
    static constexpr float CURVE_HEIGHT = 84; // of a row with a curve
    static constexpr float SCROLL_WIDTH = 12; // of the bar at the right

    struct Row {
        enum Type { SECTION, SPAN, TRIGGERS, CURVE } type;
        int element;
        int depth;
        float y; // from the top of all rows
        float height;
    };

    // What is where: an element, or a piece of the time axis.
    struct Place {
        enum Part {
            NOTHING,
            RULER, // and wave
            LABEL, // of a row
            FOLD,  // its triangle
            BODY,  // a bar, a key, a trigger, a bookmark
            LEFT,  // the ends of a bar
            RIGHT,
            LANE, // of a row, beside what is in it
            SCROLL
        } part = NOTHING;
        int row = -1;
        int element = -1; // of the document
    };

    bool mSnapping = true;
    bool mFollow = true;
    double mScale = 12;     // pixels a second
    double mScrollTime = 0; // seconds, at the left of the axis
    float mScrollRows = 0;  // pixels

    // The user asks for a menu at this position, time of the show and, for a curve, value.
    std::function<void(Vector2f place, int element, double time, double value)> mOnMenu;
    std::function<void(int element)> mOnRename;

    Timeline(Editor& editor, Show& show);
    panorama::Control* clone() override; // null: there is one

    // Follows what has changed; before each frame.
    void update();

    // View
    void zoom(double factor, float x); // around a pixel
    void fit();                        // all of the show
    void show(double from, double to);
    void reveal(int element); // scrolls and unfolds until it shows
    void setOpen(int element, bool open);
    void foldAll(bool open);
    bool isOpen(int element) const;

    // Time and pixels.
    float toX(double time) const { return getAxis().x1 + float((time - mScrollTime) * mScale); }
    double toTime(float x) const { return mScrollTime + double(x - getAxis().x1) / mScale; }
    Box2 getAxis() const;                  // of rows: right of the labels, below the wave
    Box2 getElementBox(int element) const; // of a bar, key, trigger or bookmark; empty if out of sight
    Box2 getRowBox(int row) const;
    const std::vector<Row>& getRows() const { return mRows; }
    Place find(Vector2f at) const;

    double getGrid() const; // seconds between the lines that are drawn, and the step of a nudge
    Snap makeSnap(bool held) const;
    // A hair past a line of the grid, so that what begins there has begun: the numbers of a script are
    // rounded, and so is the position in the sound.
    void seekLine(double time) { mShow.seek(time + 1e-4); }
    double getMouseTime() const { return toTime(mMouse.x); }
    bool isMouseInside() const { return isInside(mArea.world, mMouse); }

    bool isDragging() const { return mDrag != Drag::NONE; }
    void cancelDrag(); // and undoes it
    void onCaptureLost() override;
    int handleEvent(panorama::Event& event) override;
    bool acceptEvents(panorama::Event& event) override;
    void draw() override;

private:
    enum class Drag { NONE, PRESSED, MOVE, LEFT, RIGHT, BOX, SEEK, LOOP, PAN, SCROLL };
    struct Range {
        float low, high;
    };

    Editor& mEditor;
    Show& mShow;
    std::vector<Row> mRows;
    std::vector<int> mRowOf; // by element; -1 without
    float mRowsHeight = 0;
    uint32_t mVersion = 0; // of the document that the rows show
    bool mFoldChanged = true;
    std::set<uint32_t> mOpen;       // spans that show what is in them
    std::set<uint32_t> mFolded;     // sections that do not
    std::map<uint32_t, int> mLanes; // of the triggers of a span; a drag takes none away
    bool mPlayed = false;           // in the last frame

    Vector2f mMouse;
    Place mHover;
    Drag mDrag = Drag::NONE;
    Vector2f mPress;
    Place mPressed;
    double mPressTime = 0;
    float mPressRows = 0;
    bool mStretch = false;
    bool mSelectOnRelease = false;    // the press was on something selected: a click selects it alone
    std::vector<uint32_t> mBoxBefore; // selected before the box
    std::vector<double> mDragEdges;   // times of what is dragged
    std::vector<double> mTargets;     // other edges
    std::vector<double> mDragValues;  // of the keys beside the one that is dragged
    double mDragValue = 0;            // its own, before
    std::string mNumbers;             // at the mouse
    std::optional<Range> mDragRange;  // of the curve that is dragged in, kept
    uint32_t mDragCurve = 0;

    const Document& getDocument() const { return mEditor.getDocument(); }
    void buildRows();
    int countLanes(int span) const; // of its triggers: those at one time are drawn below each other
    int getLane(int trigger) const;
    double snapValue(int row, const Range& range, double value, bool held) const;
    void clampView();
    float getRowTop(int row) const { return getAxis().y1 + mRows[size_t(row)].y - mScrollRows; }
    Range getRange(int spline) const;
    float toY(int row, const Range& range, double value) const;
    double toValue(int row, const Range& range, float y) const;
    Box2 getScrollHandle() const;
    Place findInRow(int row, Vector2f at) const;

    // Mouse (studio_timeline_mouse.cpp)
    void press(const panorama::Event& event);
    void pressPlace(const panorama::Event& event);
    void pressRight(const panorama::Event& event);
    void pressElement(const panorama::Event& event);
    void release(const panorama::Event& event);
    void move(const panorama::Event& event);
    void wheel(const panorama::Event& event);
    bool doubleClick(const panorama::Event& event);
    double getPressedValue(bool held);
    Vector2f getPress() const;
    Box2 getDraggedBox() const;
    void startDrag();
    void dragSelection(const panorama::Event& event);
    void dragBox();
    void showNumbers();
    std::string describeTime(double time) const;

    // Drawing
    void drawGrid(Paint& paint);
    void drawRow(Paint& paint, int row);
    void drawBar(Paint& paint, int element, float top, bool small);
    void drawTriggers(Paint& paint, int span, float top, bool names);
    void drawCurve(Paint& paint, int row);
    void drawCurveLine(Paint& paint, int row, const Range& range, double origin);
    void drawLabel(Paint& paint, int row);
    void drawValueScale(Paint& paint, int row);
    void drawRuler(Paint& paint);
    void drawWave(Paint& paint);
    void drawBookmarks(Paint& paint);
    void drawNow(Paint& paint);
    void drawScroll(Paint& paint);
    void drawNumbers(Paint& paint);
};

// "1:23.456"
std::string formatTime(double seconds);

} // namespace zentrak::studio
