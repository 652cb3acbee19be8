// What the mouse does on the timeline.

#include "dis_key.h"
#include "studio_timeline.h"

#include <cstdio>

namespace zentrak::studio {

using panorama::Event;

namespace {

constexpr float THRESHOLD = 3; // pixels before a press becomes a drag

} // namespace

bool Timeline::acceptEvents(Event& event) {
    return isDragging() || isInside(mArea.world, event.mousePos);
}

int Timeline::handleEvent(Event& event) {
    if (event.type == "reset") { // the mouse may be elsewhere now
        mHover = Place();
        mMouse = Vector2f(-1, -1);
        return 0;
    }
    if (event.isKey())
        return 0;
    update(); // the document may have changed since the last frame
    mMouse = event.mousePos;
    if (event.type == "mousedown")
        press(event);
    else if (event.type == "mouseup")
        release(event);
    else if (event.type == "mousemove")
        move(event);
    else if (event.type == "mousewheel")
        wheel(event);
    return 1;
}

void Timeline::wheel(const Event& event) {
    if (event.ctrl())
        zoom(std::pow(1.25, double(event.wheelDelta)), event.mousePos.x);
    else if (event.shift())
        mScrollTime -= double(event.wheelDelta) * 60 / mScale;
    else
        mScrollRows -= event.wheelDelta * 3 * BAR_HEIGHT;
    clampView();
    mHover = find(mMouse);
}

void Timeline::press(const Event& event) {
    if (isDragging()) {
        cancelDrag();
        return;
    }
    pressPlace(event);
    if (isDragging())
        captureMouse(event);
}

void Timeline::pressPlace(const Event& event) {
    mPress = event.mousePos;
    mPressTime = toTime(mPress.x);
    mPressRows = mScrollRows;
    mPressed = find(mPress);
    if (event.button == display::MOUSE_MIDDLE) {
        mDrag = Drag::PAN;
        return;
    }
    if (event.button == display::MOUSE_RIGHT) {
        pressRight(event);
        return;
    }
    if (event.button != display::MOUSE_LEFT)
        return;
    if (event.doubleClick && doubleClick(event))
        return;
    switch (mPressed.part) {
    case Place::RULER:
        mDrag = event.shift() ? Drag::LOOP : Drag::SEEK;
        if (mDrag == Drag::SEEK)
            seekLine(makeSnap(event.alt())(mPressTime));
        break;
    case Place::FOLD:
        setOpen(mPressed.element, !isOpen(mPressed.element));
        break;
    case Place::SCROLL:
        mDrag = Drag::SCROLL;
        break;
    case Place::LANE:
        mBoxBefore = event.shift() || event.ctrl() ? mEditor.getSelection() : std::vector<uint32_t>();
        mEditor.select(mBoxBefore);
        mDrag = Drag::BOX;
        break;
    case Place::NOTHING:
        break;
    default:
        pressElement(event);
        break;
    }
}

// What is said in the menu of an element is about the selection. A menu on a name is for the beginning of its
// span.
void Timeline::pressRight(const Event& event) {
    if (mPressed.part == Place::LABEL || mPressed.part == Place::FOLD)
        mPressTime = getDocument().getStart(mPressed.element);
    if (mPressed.element > 0 && !mEditor.isSelected(getDocument()[mPressed.element].id))
        mEditor.select({getDocument()[mPressed.element].id});
    const bool curve = mPressed.element > 0 && getDocument()[mPressed.element].kind == Kind::SPLINE;
    mOnMenu(mPress, mPressed.element, makeSnap(event.alt())(mPressTime),
            curve ? getPressedValue(event.alt()) : 0);
}

void Timeline::pressElement(const Event& event) {
    const Document& document = getDocument();
    const uint32_t id = document[mPressed.element].id;
    mSelectOnRelease = false;
    if (document[mPressed.element].kind == Kind::SECTION && !event.ctrl()) {
        // A section's name selects all that is in it.
        std::vector<uint32_t> ids = {id};
        for (int i = document[mPressed.element].next;
             i < document.getSize() && document[i].kind != Kind::SECTION; i = document[i].next)
            if (document[i].kind == Kind::SPAN)
                ids.push_back(document[i].id);
        if (event.shift())
            ids.insert(ids.end(), mEditor.getSelection().begin(), mEditor.getSelection().end());
        mEditor.select(ids);
        return;
    }
    if (event.ctrl() || (event.shift() && (mPressed.part == Place::BODY || mPressed.part == Place::LABEL))) {
        mEditor.toggle(id);
        return;
    }
    if (mEditor.isSelected(id))
        mSelectOnRelease = true;
    else
        mEditor.select({id});
    if (mPressed.part == Place::LABEL)
        return;
    mStretch = event.shift();
    mDrag = Drag::PRESSED;
}

// Whether it means anything there. If not, it is one more press.
bool Timeline::doubleClick(const Event& event) {
    const Place& place = mPressed;
    const Kind kind = place.element > 0 ? getDocument()[place.element].kind : Kind::ROOT;
    if (place.part == Place::RULER) {
        seekLine(makeSnap(false)(mPressTime));
        mShow.setPlaying(true);
    } else if (place.part == Place::LABEL) {
        mOnRename(place.element);
    } else if (kind == Kind::SPAN && place.part >= Place::BODY && place.part <= Place::RIGHT) {
        setOpen(place.element, !isOpen(place.element));
    } else if (kind == Kind::SPLINE && place.part == Place::LANE) {
        const double time = makeSnap(event.alt())(mPressTime) - getDocument().getOrigin(place.element);
        mEditor.addKey(place.element, time, getPressedValue(event.alt()));
    } else {
        return false;
    }
    return true;
}

// The value at the press in a curve's row. It snaps to the curve too.
double Timeline::getPressedValue(bool held) {
    const int spline = mPressed.element;
    const double time = makeSnap(held)(mPressTime) - getDocument().getOrigin(spline);
    const Range range = getRange(spline);
    mDragValues = {mEditor.evaluate(spline, time)};
    return snapValue(mPressed.row, range, toValue(mPressed.row, range, mPress.y), held);
}

// Where the press is now: the wheel moves the view in a drag too.
Vector2f Timeline::getPress() const {
    return Vector2f(toX(mPressTime), mPress.y + mPressRows - mScrollRows);
}

Box2 Timeline::getDraggedBox() const {
    const Vector2f press = getPress();
    return Box2(std::min(press.x, mMouse.x), std::min(press.y, mMouse.y), std::max(press.x, mMouse.x),
                std::max(press.y, mMouse.y));
}

// A press becomes a drag: what it snaps to is found once.
void Timeline::startDrag() {
    const Document& document = getDocument();
    mDrag = mPressed.part == Place::LEFT    ? Drag::LEFT
            : mPressed.part == Place::RIGHT ? Drag::RIGHT
                                            : Drag::MOVE;
    mSelectOnRelease = false;
    mTargets = getEdges(mEditor);
    mTargets.push_back(mShow.getTime());
    mTargets.push_back(0);
    mTargets.push_back(mShow.getLength());
    mDragEdges.clear();
    const Element& held = document[mPressed.element];
    if (mDrag != Drag::RIGHT)
        mDragEdges.push_back(document.getStart(mPressed.element));
    if (held.kind == Kind::SPAN && mDrag != Drag::LEFT)
        mDragEdges.push_back(document.getEnd(mPressed.element));
    mDragRange.reset();
    if (held.kind == Kind::KEY) {
        mDragRange = getRange(held.parent);
        mDragCurve = document[held.parent].id;
        mDragValue = double(held.number);
        mDragValues.clear();
        for (const int key : document.getChildren(held.parent, Kind::KEY)) {
            if (mEditor.isSelected(document[key].id))
                continue;
            mTargets.push_back(document.getStart(key));
            mDragValues.push_back(double(document[key].number));
        }
    }
    mEditor.beginGesture();
}

void Timeline::dragSelection(const Event& event) {
    const double wanted = toTime(mMouse.x) - mPressTime;
    double seconds = makeSnap(event.alt()).shift(wanted, mDragEdges);
    if (mDrag == Drag::LEFT || mDrag == Drag::RIGHT) {
        const Editor::Edge edge = mDrag == Drag::LEFT ? Editor::Edge::LEFT : Editor::Edge::RIGHT;
        if (mStretch)
            mEditor.stretch(edge, seconds);
        else
            mEditor.resize(edge, seconds);
    } else {
        double value = 0;
        if (mDragRange && mPressed.row >= 0) {
            value = mDragValue + toValue(mPressed.row, *mDragRange, mMouse.y) -
                    toValue(mPressed.row, *mDragRange, getPress().y);
            value = snapValue(mPressed.row, *mDragRange, value, event.alt()) - mDragValue;
            if (event.shift()) { // along one axis
                if (std::fabs(mMouse.x - getPress().x) > std::fabs(mMouse.y - getPress().y))
                    value = 0;
                else
                    seconds = 0;
            }
        }
        mEditor.move(seconds, value);
    }
    showNumbers();
}

// The numbers of what is held.
void Timeline::showNumbers() {
    const Document& document = getDocument();
    const Element& held = document[mPressed.element];
    const double start = document.getStart(mPressed.element), end = document.getEnd(mPressed.element);
    mNumbers = formatNumber(start);
    if (held.kind == Kind::SPAN)
        mNumbers += " - " + formatNumber(end) + "   length " + formatNumber(end - start);
    if (held.kind == Kind::KEY)
        mNumbers += "   value " + formatNumber(double(held.number));
    mNumbers += "   " + describeTime(mDrag == Drag::RIGHT ? end : start);
}

std::string Timeline::describeTime(double time) const {
    const Tempo tempo = getDocument().getTempo();
    const double beats = std::round((time - double(tempo.start)) / tempo.getBeat() * 100) / 100;
    const double bar = std::floor(beats / tempo.beats);
    char text[64];
    snprintf(text, sizeof text, "bar %d, beat %.2f", int(std::clamp(bar, -1e6, 1e6)),
             beats - bar * tempo.beats + 1);
    return text;
}

// Everything that a box touches is selected: bars, keys and triggers.
void Timeline::dragBox() {
    const Document& document = getDocument();
    const Box2 box = getDraggedBox();
    std::vector<uint32_t> ids = mBoxBefore;
    const auto touch = [&](int element) {
        const Box2 own = getElementBox(element);
        if (own.x1 < box.x2 && own.x2 > box.x1 && own.y1 < box.y2 && own.y2 > box.y1)
            ids.push_back(document[element].id);
    };
    for (const Row& row : mRows) {
        const float top = getAxis().y1 + row.y - mScrollRows;
        if (top > box.y2 || top + row.height < box.y1)
            continue;
        if (row.type == Row::SPAN)
            touch(row.element);
        const Kind kind = row.type == Row::CURVE ? Kind::KEY : Kind::TRIGGER;
        if (row.type == Row::CURVE || row.type == Row::TRIGGERS)
            for (const int i : document.getChildren(row.element, kind))
                touch(i);
    }
    mEditor.select(std::move(ids));
}

void Timeline::move(const Event& event) {
    const float dx = mMouse.x - mPress.x, dy = mMouse.y - mPress.y;
    switch (mDrag) {
    case Drag::NONE:
        mHover = find(mMouse);
        break;
    case Drag::PRESSED:
        if (std::fabs(dx) < THRESHOLD && std::fabs(dy) < THRESHOLD)
            break;
        startDrag();
        [[fallthrough]];
    case Drag::MOVE:
    case Drag::LEFT:
    case Drag::RIGHT:
        dragSelection(event);
        break;
    case Drag::BOX:
        dragBox();
        break;
    case Drag::SEEK:
        if (std::fabs(dx) < THRESHOLD && mNumbers.empty())
            break; // a click
        mShow.seek(
            std::clamp(makeSnap(event.alt() || !event.ctrl())(toTime(mMouse.x)), 0.0, mShow.getLength()));
        mNumbers = formatTime(mShow.getTime()) + "   " + describeTime(mShow.getTime());
        break;
    case Drag::LOOP: {
        const Snap snap = makeSnap(event.alt());
        const double a = std::max(0.0, snap(mPressTime)), b = std::max(0.0, snap(toTime(mMouse.x)));
        if (a != b)
            mShow.setLoop(std::pair(std::min(a, b), std::max(a, b)));
        mNumbers = formatNumber(std::min(a, b)) + " - " + formatNumber(std::max(a, b));
        break;
    }
    case Drag::PAN:
        mScrollTime += mPressTime - toTime(mMouse.x);
        mScrollRows = mPressRows - dy;
        clampView();
        break;
    case Drag::SCROLL: {
        const float room = getAxis().getHeight() - getScrollHandle().getHeight();
        mScrollRows =
            mPressRows + dy * (mRowsHeight + BAR_HEIGHT - getAxis().getHeight()) / std::max(1.0f, room);
        clampView();
        break;
    }
    }
}

void Timeline::release(const Event& event) {
    if (!isDragging() || event.button == display::MOUSE_RIGHT)
        return;
    releaseMouse();
    mEditor.endGesture();
    if (mDrag == Drag::PRESSED && mSelectOnRelease)
        mEditor.select({getDocument()[mPressed.element].id});
    if (mDrag == Drag::PRESSED && getDocument()[mPressed.element].kind == Kind::BOOKMARK)
        seekLine(double(getDocument()[mPressed.element].start));
    if (mDrag == Drag::LOOP && std::fabs(mMouse.x - mPress.x) < THRESHOLD)
        mShow.setLoop(std::nullopt);
    mDrag = Drag::NONE;
    mNumbers.clear();
    mTargets.clear();
    mDragRange.reset();
    mHover = find(mMouse);
}

void Timeline::onCaptureLost() {
    cancelDrag();
}

void Timeline::cancelDrag() {
    if (!isDragging())
        return;
    releaseMouse();
    mEditor.cancelGesture();
    mDrag = Drag::NONE;
    mNumbers.clear();
    mTargets.clear();
    mDragRange.reset();
}

} // namespace zentrak::studio
