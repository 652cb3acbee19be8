#include "studio_timeline.h"

#include "mb_splinebase.h"
#include "script_spline.h"

#include <cstdio>

namespace zentrak::studio {

namespace {

constexpr float KEY = 5;    // half a key's diagonal
constexpr float HANDLE = 6; // pixels of a bar's end
constexpr double MIN_SCALE = 0.5, MAX_SCALE = 4000;
constexpr float FOLD = 16;   // pixels of a triangle
constexpr float INDENT = 14; // a level

} // namespace

std::string formatTime(double seconds) {
    char text[64];
    const double whole = std::max(0.0, seconds);
    const int minutes = int(std::min(whole, 359999.0) / 60);
    snprintf(text, sizeof text, "%d:%06.3f", minutes, std::min(whole, 359999.0) - 60.0 * minutes);
    return text;
}

Timeline::Timeline(Editor& editor, Show& show) : mEditor(editor), mShow(show) {
    mName = mType = "timeline";
    mRaiseOnFocus = false;
}

panorama::Control* Timeline::clone() {
    return nullptr;
}

// Rows

void Timeline::update() {
    const uint32_t version = getDocument().getVersion();
    if (version != mVersion || mFoldChanged) {
        mVersion = version;
        mFoldChanged = false;
        buildRows();
        mHover = Place();
    }
    // The time now stays in sight: while it plays, and after a seek.
    const bool playing = mShow.isPlaying();
    if (mFollow && (playing || mPlayed) && mDrag == Drag::NONE) {
        const Box2 axis = getAxis();
        const float x = toX(mShow.getTime());
        if (x > axis.x2 - 40 || x < axis.x1)
            mScrollTime = mShow.getTime() - 0.1 * double(axis.getWidth()) / mScale;
    }
    mPlayed = playing;
    clampView();
}

int Timeline::countLanes(int span) const {
    const Document& document = getDocument();
    std::map<float, int> lanes;
    int most = 0;
    for (const int trigger : document.getChildren(span, Kind::TRIGGER))
        most = std::max(most, ++lanes[document[trigger].start]);
    return most;
}

int Timeline::getLane(int trigger) const {
    const Document& document = getDocument();
    int lane = 0;
    for (const int other : document.getChildren(document[trigger].parent, Kind::TRIGGER))
        lane += other < trigger && document[other].start == document[trigger].start;
    return lane;
}

// What is in a span that is folded is passed over, as are the spans of a folded section.
void Timeline::buildRows() {
    const Document& document = getDocument();
    mRows.clear();
    mRowOf.assign(size_t(document.getSize()), -1);
    float y = 0;
    bool folded = false;
    const auto add = [&](Row::Type type, int element, int depth, float height) {
        if (type != Row::TRIGGERS)
            mRowOf[size_t(element)] = int(mRows.size());
        mRows.push_back({type, element, depth, y, height});
        y += height;
    };
    for (int i = 1; i < document.getSize();) {
        const Element& element = document[i];
        const int above = mRowOf[size_t(element.parent)];
        const int depth = above < 0 ? 0 : mRows[size_t(above)].depth + 1;
        int next = element.next;
        if (element.kind == Kind::SECTION) {
            add(Row::SECTION, i, 0, BAR_HEIGHT);
            folded = mFolded.contains(element.id);
        } else if (element.kind == Kind::SPLINE) {
            add(Row::CURVE, i, depth, CURVE_HEIGHT);
        } else if (element.kind == Kind::SPAN && !folded) {
            add(Row::SPAN, i, depth, BAR_HEIGHT);
            if (mOpen.contains(element.id)) {
                next = i + 1;
                int& lanes = mLanes[element.id];
                lanes = isDragging() ? std::max(lanes, countLanes(i)) : countLanes(i);
                if (lanes > 0)
                    add(Row::TRIGGERS, i, depth + 1, BAR_HEIGHT * float(lanes));
            }
        }
        i = next;
    }
    mRowsHeight = y;
}

bool Timeline::isOpen(int element) const {
    const uint32_t id = getDocument()[element].id;
    return getDocument()[element].kind == Kind::SECTION ? !mFolded.contains(id) : mOpen.contains(id);
}

void Timeline::setOpen(int element, bool open) {
    const uint32_t id = getDocument()[element].id;
    const bool section = getDocument()[element].kind == Kind::SECTION;
    std::set<uint32_t>& ids = section ? mFolded : mOpen;
    if (open != section)
        ids.insert(id);
    else
        ids.erase(id);
    mFoldChanged = true;
}

void Timeline::foldAll(bool open) {
    for (int i = 1; i < getDocument().getSize(); ++i)
        if (getDocument()[i].kind == Kind::SPAN || (open && getDocument()[i].kind == Kind::SECTION))
            setOpen(i, open);
}

void Timeline::reveal(int element) {
    const Document& document = getDocument();
    for (int i = document[element].parent; i > 0; i = document[i].parent)
        if (document[i].kind == Kind::SPAN && !isOpen(i))
            setOpen(i, true);
    int top = element;
    while (document[top].parent > 0)
        top = document[top].parent;
    int section = -1;
    for (const int i : document.getChildren(0, Kind::SECTION))
        section = i < top ? i : section;
    if (section > 0 && document[element].kind != Kind::SECTION && !isOpen(section))
        setOpen(section, true);
    update();
    int shown = element;
    while (shown > 0 && mRowOf[size_t(shown)] < 0)
        shown = document[shown].parent;
    if (shown <= 0)
        return;
    const Row& row = mRows[size_t(mRowOf[size_t(shown)])];
    const float height = getAxis().getHeight();
    if (row.y < mScrollRows)
        mScrollRows = row.y;
    if (row.y + row.height > mScrollRows + height)
        mScrollRows = row.y + row.height - height;
    clampView();
}

// View

Box2 Timeline::getAxis() const {
    const Box2& all = mArea.world;
    return Box2(all.x1 + LABELS_WIDTH, all.y1 + RULER_HEIGHT + WAVE_HEIGHT, all.x2 - SCROLL_WIDTH, all.y2);
}

void Timeline::clampView() {
    mScale = std::clamp(mScale, MIN_SCALE, MAX_SCALE);
    const double end = std::max({mShow.getLength(), 10.0}) + 0.5 * double(getAxis().getWidth()) / mScale;
    mScrollTime =
        std::clamp(mScrollTime, -20 / mScale, std::max(0.0, end - double(getAxis().getWidth()) / mScale));
    const float most = std::max(0.0f, mRowsHeight + BAR_HEIGHT - getAxis().getHeight());
    mScrollRows = std::floor(std::clamp(mScrollRows, 0.0f, most));
}

void Timeline::zoom(double factor, float x) {
    const double time = toTime(x);
    mScale = std::clamp(mScale * factor, MIN_SCALE, MAX_SCALE);
    mScrollTime = time - double(x - getAxis().x1) / mScale;
    clampView();
}

void Timeline::fit() {
    mScale = double(getAxis().getWidth() - 30) / std::max(1.0, mShow.getLength());
    mScrollTime = -10 / mScale;
    clampView();
}

void Timeline::show(double from, double to) {
    mScale = double(getAxis().getWidth()) / std::max(0.1, (to - from) * 1.1);
    mScrollTime = from - 0.05 * (to - from);
    clampView();
}

double Timeline::getGrid() const {
    const Tempo tempo = getDocument().getTempo();
    const double beat = tempo.getBeat(), least = 11 / mScale;
    for (const double step : {beat / 4, beat / 2, beat})
        if (step >= least)
            return step;
    double step = tempo.getBar();
    while (step < least)
        step *= 2;
    return step;
}

Snap Timeline::makeSnap(bool held) const {
    Snap snap;
    snap.on = mSnapping && !held;
    snap.reach = 8 / mScale;
    snap.tempo = getDocument().getTempo();
    snap.step = getGrid();
    snap.targets = mTargets;
    return snap;
}

// Curves

Timeline::Range Timeline::getRange(int spline) const {
    if (mDragRange && getDocument()[spline].id == mDragCurve)
        return *mDragRange;
    Range range{0, 1};
    const Document& document = getDocument();
    for (const int key : document.getChildren(spline, Kind::KEY)) {
        if (!std::isfinite(document[key].number))
            continue;
        range.low = std::min(range.low, document[key].number);
        range.high = std::max(range.high, document[key].number);
    }
    const float margin = (range.high - range.low) * 0.08f;
    return {range.low - margin, range.high + margin};
}

float Timeline::toY(int row, const Range& range, double value) const {
    const float top = getRowTop(row) + 4, height = mRows[size_t(row)].height - 9;
    const double share = (value - double(range.low)) / double(range.high - range.low);
    return top + height * (1 - float(std::clamp(share, -20.0, 21.0)));
}

double Timeline::toValue(int row, const Range& range, float y) const {
    const float top = getRowTop(row) + 4, height = mRows[size_t(row)].height - 9;
    return double(range.low) + double(range.high - range.low) * double(1 - (y - top) / height);
}

// Values snap to 0 and 1, to the curve's other keys, and else to a round step of about a pixel.
double Timeline::snapValue(int row, const Range& range, double value, bool held) const {
    if (!mSnapping || held)
        return value;
    const double pixel = double(range.high - range.low) / double(mRows[size_t(row)].height - 9);
    double best = value + 1e9;
    for (const double target : {0.0, 1.0})
        best = nearest(value, best, target);
    for (const double target : mDragValues)
        best = nearest(value, best, target);
    if (std::fabs(best - value) <= 5 * pixel)
        return best;
    double step = std::pow(10, std::floor(std::log10(pixel)));
    for (const double factor : {2.0, 2.5, 2.0}) // 1, 2, 5, 10
        step *= step < pixel ? factor : 1;
    return std::round(value / step) * step;
}

// What is where

Box2 Timeline::getRowBox(int row) const {
    const float top = getRowTop(row);
    return Box2(mArea.world.x1, top, mArea.world.x2 - SCROLL_WIDTH, top + mRows[size_t(row)].height);
}

Box2 Timeline::getElementBox(int element) const {
    const Document& document = getDocument();
    const Element& it = document[element];
    const double origin = document.getOrigin(element);
    if (it.kind == Kind::BOOKMARK) {
        const float x = toX(double(it.start));
        panorama::Render* const render = const_cast<Timeline*>(this)->getRender();
        const float top = mArea.world.y1 + RULER_HEIGHT;
        return Box2(x, top, x + 17 + (render ? render->getTextLength(it.name) : 0), top + 17);
    }
    if (it.kind == Kind::SPAN && mRowOf[size_t(element)] >= 0) {
        const float top = getRowTop(mRowOf[size_t(element)]);
        return Box2(toX(origin + double(it.start)), top + 2, toX(origin + double(it.end)),
                    top + BAR_HEIGHT - 2);
    }
    if (it.kind == Kind::TRIGGER && mRowOf[size_t(it.parent)] >= 0) {
        const int row = mRowOf[size_t(it.parent)] + (isOpen(it.parent) ? 1 : 0);
        const float x = toX(origin + double(it.start)),
                    y = getRowTop(row) +
                        (isOpen(it.parent) ? BAR_HEIGHT * (float(getLane(element)) + 0.5f) : BAR_HEIGHT - 7);
        return Box2(x - KEY, y - KEY, x + KEY, y + KEY);
    }
    if (it.kind == Kind::KEY && mRowOf[size_t(it.parent)] >= 0) {
        const int row = mRowOf[size_t(it.parent)];
        const float x = toX(origin + double(it.start)), y = toY(row, getRange(it.parent), double(it.number));
        return Box2(x - KEY, y - KEY, x + KEY, y + KEY);
    }
    return Box2();
}

Box2 Timeline::getScrollHandle() const {
    const Box2 axis = getAxis();
    const float all = std::max(1.0f, mRowsHeight + BAR_HEIGHT), seen = axis.getHeight();
    const float length = std::max(24.0f, std::min(1.0f, seen / all) * seen);
    const float most = std::max(1.0f, all - seen);
    const float top = axis.y1 + (seen - length) * std::clamp(mScrollRows / most, 0.0f, 1.0f);
    return Box2(mArea.world.x2 - SCROLL_WIDTH + 2, top, mArea.world.x2 - 2, top + length);
}

Timeline::Place Timeline::find(Vector2f at) const {
    const Box2& all = mArea.world;
    const Box2 axis = getAxis();
    if (!isInside(all, at))
        return {};
    if (at.x >= axis.x2)
        return {Place::SCROLL, -1, -1};
    if (at.y < axis.y1) {
        if (at.x < axis.x1)
            return {};
        Place place{Place::RULER, -1, -1};
        for (const int i : getDocument().getChildren(0, Kind::BOOKMARK))
            if (isInside(getElementBox(i), at))
                place = {Place::BODY, -1, i}; // the last one is on top
        return place;
    }
    const float y = at.y - axis.y1 + mScrollRows;
    const auto next = std::upper_bound(mRows.begin(), mRows.end(), y,
                                       [](float value, const Row& row) { return value < row.y; });
    if (next == mRows.begin())
        return {Place::LANE, -1, -1};
    const int row = int(next - mRows.begin()) - 1;
    const Row& found = mRows[size_t(row)];
    if (y >= found.y + found.height)
        return {Place::LANE, -1, -1};
    if (at.x >= axis.x1)
        return findInRow(row, at);
    const float left = all.x1 + 4 + INDENT * float(found.depth);
    const bool folds = found.type == Row::SECTION || found.type == Row::SPAN;
    return {folds && at.x >= left && at.x < left + FOLD ? Place::FOLD : Place::LABEL, row, found.element};
}

Timeline::Place Timeline::findInRow(int row, Vector2f at) const {
    const Document& document = getDocument();
    const Row& found = mRows[size_t(row)];
    const auto near = [&](int element) {
        const Box2 box = getElementBox(element);
        return isInside(Box2(box.x1 - 1, box.y1 - 1, box.x2 + 1, box.y2 + 1), at);
    };
    if (found.type == Row::SECTION)
        return {Place::LANE, row, found.element};
    const Kind kind = found.type == Row::CURVE ? Kind::KEY : Kind::TRIGGER;
    int inner = -1;
    for (const int i : document.getChildren(found.element, kind))
        if (near(i) && (inner < 0 || mEditor.isSelected(document[i].id)))
            inner = i;
    if (inner > 0)
        return {Place::BODY, row, inner};
    if (found.type != Row::SPAN)
        return {Place::LANE, row, found.element};
    const Box2 bar = getElementBox(found.element);
    const float handle = std::min(HANDLE, std::max(2.0f, bar.getWidth() / 4));
    if (at.y < bar.y1 || at.y >= bar.y2 || at.x < bar.x1 - 3 || at.x >= bar.x2 + 3)
        return {Place::LANE, row, found.element};
    return {at.x < bar.x1 + handle    ? Place::LEFT
            : at.x >= bar.x2 - handle ? Place::RIGHT
                                      : Place::BODY,
            row, found.element};
}

// Drawing

void Timeline::draw() {
    panorama::Render* const render = getRender();
    if (!render)
        return;
    Paint paint(*render);
    const Box2& all = mArea.world;
    const Box2 axis = getAxis();
    paint.clip(Box2(all.x1, axis.y1, axis.x2, axis.y2));
    paint.box(Box2(all.x1, axis.y1 + mRowsHeight - mScrollRows, axis.x2, axis.y2), color::ground);
    for (size_t i = 0; i < mRows.size(); ++i)
        if (mRows[i].y + mRows[i].height > mScrollRows && mRows[i].y < mScrollRows + axis.getHeight())
            paint.box(getRowBox(int(i)), mRows[i].type == Row::SECTION ? color::raised
                                         : i % 2                       ? color::laneOdd
                                                                       : color::lane);
    paint.clip(axis);
    drawGrid(paint);
    if (mRows.empty())
        paint.text(axis.x1 + 24, axis.y1 + 40, "A adds an effect at the time now. F1 shows all keys.",
                   color::dim);
    for (size_t i = 0; i < mRows.size(); ++i)
        if (mRows[i].y + mRows[i].height > mScrollRows && mRows[i].y < mScrollRows + axis.getHeight())
            drawRow(paint, int(i));
    for (size_t i = 0; i < mRows.size(); ++i) {
        if (mRows[i].y + mRows[i].height <= mScrollRows || mRows[i].y >= mScrollRows + axis.getHeight())
            continue;
        // The row of an unfolded section has nothing but its name.
        const bool whole = mRows[i].type == Row::SECTION && isOpen(mRows[i].element);
        paint.clip(Box2(all.x1, axis.y1, whole ? axis.x2 : axis.x1, axis.y2));
        drawLabel(paint, int(i));
    }
    paint.clip(Box2(all.x1, axis.y1, axis.x2, axis.y2));
    paint.line(axis.x1 - 1, axis.y1, axis.x1 - 1, axis.y2, color::edge);
    drawRuler(paint);
    drawWave(paint);
    drawBookmarks(paint);
    drawNow(paint);
    if (mDrag == Drag::BOX) {
        paint.clip(axis);
        const Box2 box = getDraggedBox();
        paint.box(box, Vector4f(1, 1, 1, 0.08f));
        paint.frame(box, Vector4f(1, 1, 1, 0.5f));
    }
    drawScroll(paint);
    drawNumbers(paint);
}

void Timeline::drawGrid(Paint& paint) {
    const Box2 axis = getAxis();
    const Tempo tempo = getDocument().getTempo();
    const double step = getGrid(), bar = tempo.getBar(), origin = double(tempo.start);
    const double first = std::floor((mScrollTime - origin) / step);
    for (double i = first; toX(origin + i * step) < axis.x2; ++i) {
        const double time = i * step;
        const double bars = time / bar;
        const bool onBar = std::fabs(bars - std::round(bars)) < 1e-6;
        const float x = toX(origin + time);
        paint.line(x, axis.y1, x, axis.y2, Vector4f(1, 1, 1, onBar ? 0.13f : 0.05f));
    }
    if (const auto& loop = mShow.getLoop())
        paint.box(Box2(toX(loop->first), axis.y1, toX(loop->second), axis.y2),
                  Vector4f(0.3f, 0.55f, 0.35f, 0.10f));
    const float end = toX(mShow.getLength());
    paint.box(Box2(end, axis.y1, axis.x2, axis.y2), Vector4f(0, 0, 0, 0.35f));
}

void Timeline::drawRow(Paint& paint, int index) {
    const Row& row = mRows[size_t(index)];
    const Document& document = getDocument();
    if (row.type == Row::SPAN) {
        drawBar(paint, row.element, getRowTop(index), false);
        if (!isOpen(row.element))
            drawTriggers(paint, row.element, getRowTop(index) + BAR_HEIGHT - 7, false);
    } else if (row.type == Row::TRIGGERS) {
        drawTriggers(paint, row.element, getRowTop(index) + BAR_HEIGHT / 2, true);
    } else if (row.type == Row::CURVE) {
        drawCurve(paint, index);
    } else if (!isOpen(row.element)) {
        for (int i = document[row.element].next; i < document.getSize(); i = document[i].next) {
            if (document[i].kind == Kind::SECTION)
                break;
            if (document[i].kind == Kind::SPAN)
                drawBar(paint, i, getRowTop(index), true);
        }
    }
}

void Timeline::drawBar(Paint& paint, int element, float top, bool small) {
    const Document& document = getDocument();
    const Element& span = document[element];
    const double origin = document.getOrigin(element), now = mShow.getTime() - origin;
    bool on = span.enabled;
    for (int i = span.parent; i > 0; i = document[i].parent)
        on = on && document[i].enabled;
    const float x1 = toX(origin + double(span.start)), x2 = std::max(toX(origin + double(span.end)), x1 + 2);
    const Box2 axis = getAxis();
    if (x2 < axis.x1 || x1 > axis.x2)
        return;
    const bool active = on && now >= double(span.start) && now < double(span.end);
    const Vector4f base = colorOf(span.name);
    const Box2 bar(x1, top + (small ? 6 : 2), x2, top + BAR_HEIGHT - (small ? 6 : 2));
    paint.box(bar, !on ? color::raised : shade(base, active ? 1.45f : 0.95f));
    if (small)
        return;
    const bool selected = mEditor.isSelected(span.id);
    paint.frame(bar, selected ? color::selected : color::edge);
    if (selected)
        paint.frame(Box2(bar.x1 + 1, bar.y1 + 1, bar.x2 - 1, bar.y2 - 1), color::selected);
    if (mHover.element == element && mDrag == Drag::NONE && mHover.row >= 0) {
        const float handle = std::min(HANDLE, std::max(2.0f, bar.getWidth() / 4));
        if (mHover.part == Place::LEFT)
            paint.box(Box2(bar.x1, bar.y1, bar.x1 + handle, bar.y2), Vector4f(1, 1, 1, 0.5f));
        if (mHover.part == Place::RIGHT)
            paint.box(Box2(bar.x2 - handle, bar.y1, bar.x2, bar.y2), Vector4f(1, 1, 1, 0.5f));
    }
    const float left = std::max(bar.x1, axis.x1) + 6;
    if (bar.x2 - left > 14)
        paint.text(left, (bar.y1 + bar.y2) / 2, paint.fit(span.name, bar.x2 - left - 4),
                   on ? active ? Vector4f(1, 1, 1, 1) : color::ink : color::faint);
}

void Timeline::drawTriggers(Paint& paint, int span, float top, bool names) {
    const Document& document = getDocument();
    const Box2 axis = getAxis();
    const std::vector<int> triggers = document.getChildren(span, Kind::TRIGGER);
    for (const int i : triggers) {
        const Element& trigger = document[i];
        const double start = document.getStart(i);
        const float y = names ? top + BAR_HEIGHT * float(getLane(i)) : top;
        const bool selected = mEditor.isSelected(trigger.id);
        const std::string text = trigger.value.empty() ? trigger.name : trigger.name + " = " + trigger.value;
        const float textEnd = names ? toX(start) + 12 + paint.width(text) : 0;
        for (int n = 1; n < trigger.repeat && n < 1000 && trigger.delay > 0; ++n) {
            const float x = toX(start + n * double(trigger.delay));
            if (x > axis.x2)
                break;
            if (x > std::max(axis.x1 - KEY, textEnd))
                paint.diamond(x, y, 3, selected ? color::accent : Vector4f(1, 1, 1, 0.45f));
        }
        const float x = toX(start);
        if (x < axis.x1 - 200 || x > axis.x2 + KEY)
            continue;
        if (names) {
            float room = axis.x2 - x; // up to the next one
            for (const int other : triggers)
                if (document[other].start > trigger.start)
                    room = std::min(room, toX(document.getStart(other)) - x);
            paint.text(x + 8, y, paint.fit(text, room - 16), selected ? color::selected : color::dim);
        }
        paint.diamond(x, y, KEY + 1, color::edge);
        paint.diamond(x, y, KEY, selected ? color::selected : color::accent);
    }
}

void Timeline::drawCurve(Paint& paint, int index) {
    const Row& row = mRows[size_t(index)];
    const Document& document = getDocument();
    const Element& spline = document[row.element];
    const Range range = getRange(row.element);
    const double origin = document.getOrigin(row.element);
    const Element& span = document[spline.parent];
    const float top = getRowTop(index);
    paint.box(Box2(toX(origin), top + 1, toX(origin + double(span.end) - double(span.start)),
                   top + CURVE_HEIGHT - 1),
              Vector4f(0, 0, 0, 0.30f));
    for (const double value : {0.0, 1.0})
        if (value >= double(range.low) && value <= double(range.high)) {
            const float y = toY(index, range, value);
            paint.line(getAxis().x1, y, getAxis().x2, y, Vector4f(1, 1, 1, 0.12f));
        }
    drawCurveLine(paint, index, range, origin);
    for (const int k : document.getChildren(row.element, Kind::KEY)) {
        const float x = toX(document.getStart(k)), y = toY(index, range, double(document[k].number));
        const bool hover = mHover.element == k;
        paint.diamond(x, y, KEY + 1, color::edge);
        paint.diamond(x, y, hover ? KEY + 1 : KEY,
                      mEditor.isSelected(document[k].id) ? color::selected : color::curve);
    }
    // The value now.
    const double now = mShow.getTime() - origin;
    if (now >= 0 && now < double(span.end) - double(span.start)) {
        const double value = mEditor.evaluate(row.element, now);
        paint.text(toX(mShow.getTime()) + 10,
                   std::clamp(toY(index, range, value) - 9, top + 8, top + CURVE_HEIGHT - 8),
                   formatNumber(value), color::now);
    }
}

void Timeline::drawCurveLine(Paint& paint, int index, const Range& range, double origin) {
    const script::Spline spline = makeSpline(getDocument(), mRows[size_t(index)].element);
    if (spline.mKeys.empty())
        return;
    const Box2 axis = getAxis();
    const Vector4f ink = shade(color::curve, 0.8f);
    const auto yOf = [&](double value) { return toY(index, range, value); };
    const auto xOf = [&](float time) { return toX(origin + double(time)); };
    const size_t count = spline.mKeys.size();
    paint.line(axis.x1, yOf(double(spline.mKeys[0].value)), xOf(spline.mKeys[0].time),
               yOf(double(spline.mKeys[0].value)), shade(ink, 0.6f));
    for (size_t i = 0; i + 1 < count; ++i) {
        const auto &a = spline.mKeys[i], &b = spline.mKeys[i + 1];
        const float x1 = xOf(a.time), x2 = xOf(b.time);
        if (x2 < axis.x1 || x1 > axis.x2)
            continue;
        float x = x1, y = yOf(double(a.value));
        if (spline.mMode == mathbase::SPLINE_SQUARE) {
            paint.line(x1, y, x2, y, ink);
            paint.line(x2, y, x2, yOf(double(b.value)), ink);
            continue;
        }
        const float step = spline.mMode == mathbase::SPLINE_SMOOTH ? 4.0f : x2 - x1 + 1;
        for (float to = std::max(x1, axis.x1 - step); x < x2; x = to) {
            to = std::min(x2, std::max(to, x) + step);
            const float value = to >= x2 ? b.value : spline.evaluate(float(toTime(to) - origin));
            const float next = yOf(double(value));
            paint.line(x, y, to, next, ink);
            y = next;
        }
    }
    const float last = yOf(double(spline.mKeys[count - 1].value));
    paint.line(xOf(spline.mKeys[count - 1].time), last, axis.x2, last, shade(ink, 0.6f));
}

void Timeline::drawLabel(Paint& paint, int index) {
    const Row& row = mRows[size_t(index)];
    const Document& document = getDocument();
    const Element& element = document[row.element];
    const Box2 box = getRowBox(index);
    const float left = box.x1 + 4 + INDENT * float(row.depth), middle = box.y1 + BAR_HEIGHT / 2;
    const float right = getAxis().x1 - 8;
    const bool selected = mEditor.isSelected(element.id) && row.type != Row::TRIGGERS;
    if (selected)
        paint.box(Box2(box.x1, box.y1, right + 7, box.y2 - 1), Vector4f(1, 1, 1, 0.14f));
    if (row.type == Row::SECTION || row.type == Row::SPAN) {
        const bool inside = row.type == Row::SECTION || element.next > row.element + 1;
        const Vector4f& ink = inside ? color::dim : color::faint;
        if (isOpen(row.element))
            paint.arrowDown(left + 5, middle - 2, 4, ink);
        else
            paint.arrowRight(left + 3, middle, 4, ink);
    }
    const float textLeft = left + FOLD;
    if (row.type == Row::SECTION) {
        const float end = isOpen(row.element) ? getAxis().x2 : right;
        paint.text(textLeft, middle, paint.fit(element.name, end - textLeft), color::accent);
        return;
    }
    if (row.type == Row::TRIGGERS) {
        paint.text(textLeft, middle, "triggers", color::faint);
        return;
    }
    const Vector4f& ink = selected                 ? color::selected
                          : row.type == Row::CURVE ? color::curve
                          : element.enabled        ? color::ink
                                                   : color::faint;
    paint.text(textLeft, middle,
               paint.fit(element.name.empty() ? "(no name)" : element.name, right - textLeft), ink);
    if (row.type != Row::CURVE)
        return;
    paint.text(textLeft, middle + 16, script::Spline::getModeName(element.mode), color::faint);
    drawValueScale(paint, index);
}

// The lowest and the highest value that shows, and 0 and 1 where there is room.
void Timeline::drawValueScale(Paint& paint, int index) {
    const Box2 box = getRowBox(index);
    const Range range = getRange(mRows[size_t(index)].element);
    const double margin = double(range.high - range.low) * 0.08 / 1.16;
    std::vector<float> drawn;
    for (const double value : {double(range.high) - margin, double(range.low) + margin, 0.0, 1.0}) {
        const float y = std::clamp(toY(index, range, value), box.y1 + 8, box.y2 - 8);
        if (std::any_of(drawn.begin(), drawn.end(), [y](float other) { return std::fabs(other - y) < 14; }))
            continue;
        drawn.push_back(y);
        paint.textRight(getAxis().x1 - 6, y, formatNumber(std::round(value * 100) / 100), color::dim);
    }
}

void Timeline::drawRuler(Paint& paint) {
    const Box2& all = mArea.world;
    const Box2 axis = getAxis();
    const Tempo tempo = getDocument().getTempo();
    const double bar = tempo.getBar(), origin = double(tempo.start);
    paint.clip(all);
    paint.box(Box2(all.x1, all.y1, all.x2, axis.y1), color::panel);
    char text[64];
    snprintf(text, sizeof text, "%g beats/min, %d/4", double(tempo.bpm), tempo.beats);
    paint.text(all.x1 + 8, all.y1 + RULER_HEIGHT / 2, text, color::dim);
    paint.text(all.x1 + 8, all.y1 + RULER_HEIGHT + 14, formatTime(mShow.getTime()), color::now);
    paint.text(all.x1 + 8, all.y1 + RULER_HEIGHT + 32, describeTime(mShow.getTime()), color::dim);
    paint.clip(Box2(axis.x1, all.y1, axis.x2, axis.y1));
    if (const auto& loop = mShow.getLoop())
        paint.box(Box2(toX(loop->first), all.y1, toX(loop->second), axis.y1),
                  Vector4f(0.3f, 0.6f, 0.38f, 0.55f));
    double step = bar;
    while (step * mScale < 46)
        step *= 2;
    for (double i = std::floor((mScrollTime - origin) / step); toX(origin + i * step) < axis.x2; ++i) {
        const float x = toX(origin + i * step);
        paint.line(x, all.y1, x, axis.y1, color::faint);
        if (i >= 0)
            paint.text(x + 4, all.y1 + RULER_HEIGHT / 2, std::to_string(int(std::lround(i * step / bar))),
                       color::ink);
    }
    const double grid = getGrid();
    if (grid < step)
        for (double i = std::floor((mScrollTime - origin) / grid); toX(origin + i * grid) < axis.x2; ++i)
            paint.line(toX(origin + i * grid), all.y1 + RULER_HEIGHT - 4, toX(origin + i * grid),
                       all.y1 + RULER_HEIGHT, color::faint);
}

void Timeline::drawWave(Paint& paint) {
    const Box2& all = mArea.world;
    const Box2 axis = getAxis();
    const float middle = all.y1 + RULER_HEIGHT + WAVE_HEIGHT / 2, half = WAVE_HEIGHT / 2 - 3;
    paint.clip(Box2(axis.x1, all.y1 + RULER_HEIGHT, axis.x2, axis.y1));
    constexpr float STEP = 2;
    for (float x = axis.x1; x < axis.x2; x += STEP) {
        const auto [low, high] = mShow.getWave().getPeak(toTime(x), toTime(x + STEP));
        if (high > low)
            paint.box(Box2(x, std::floor(middle - half * std::min(1.0f, high)), x + STEP - 0.5f,
                           std::ceil(middle - half * std::max(-1.0f, low)) + 1),
                      color::wave);
    }
}

void Timeline::drawBookmarks(Paint& paint) {
    const Document& document = getDocument();
    const Box2& all = mArea.world;
    const Box2 axis = getAxis();
    paint.clip(Box2(axis.x1, all.y1, axis.x2, axis.y2));
    for (const int i : document.getChildren(0, Kind::BOOKMARK)) {
        const Vector4f& ink = mEditor.isSelected(document[i].id) ? color::selected : color::bookmark;
        const float x = toX(double(document[i].start));
        const Box2 flag = getElementBox(i);
        paint.line(x, all.y1, x, axis.y1, ink);
        paint.box(Box2(flag.x1 + 1, flag.y1 + 1, flag.x2, flag.y2 - 1), Vector4f(0, 0, 0, 0.55f));
        paint.box(Box2(x, flag.y1 + 4, x + 8, flag.y1 + 12), ink);
        paint.text(x + 13, flag.y1 + 8, document[i].name, ink);
    }
}

void Timeline::drawNow(Paint& paint) {
    const Box2& all = mArea.world;
    const Box2 axis = getAxis();
    paint.clip(Box2(axis.x1, all.y1, axis.x2, axis.y2));
    const float x = std::floor(toX(mShow.getTime()));
    paint.box(Box2(x, all.y1, x + 1, axis.y2), color::now);
    paint.arrowDown(x, all.y1, 5, color::now);
}

void Timeline::drawScroll(Paint& paint) {
    const Box2& all = mArea.world;
    paint.clip(all);
    paint.box(Box2(all.x2 - SCROLL_WIDTH, getAxis().y1, all.x2, all.y2), color::edge);
    paint.box(getScrollHandle(),
              mDrag == Drag::SCROLL || mHover.part == Place::SCROLL ? color::dim : color::faint);
}

void Timeline::drawNumbers(Paint& paint) {
    if (mNumbers.empty() || mDrag == Drag::NONE)
        return;
    paint.unclip();
    const float width = paint.width(mNumbers) + 16;
    const float x = std::min(mMouse.x + 14, mArea.world.x2 - width), y = mMouse.y - 30;
    paint.box(Box2(x, y, x + width, y + 22), Vector4f(0, 0, 0, 0.85f));
    paint.frame(Box2(x, y, x + width, y + 22), color::faint);
    paint.text(x + 8, y + 11, mNumbers, color::accent);
}

} // namespace zentrak::studio
