#include "studio_editor.h"

#include "mb_splinebase.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace zentrak::studio {

using Change = Document::Change;

namespace {

const char* timeOf(Kind kind) {
    return kind == Kind::KEY || kind == Kind::BOOKMARK ? "time" : "start";
}

// Sets an attribute of the outermost tag of an element's text.
void setIn(std::string& text, std::string_view name, std::string_view value) {
    const Change change = changeAttribute(text, 0, text.size(), name, value);
    text.replace(change.at, change.length, change.text);
}

void setIn(std::string& text, std::string_view name, double number) {
    setIn(text, name, formatNumber(number));
}

// The text of a start tag, or of one without content. A value may hold quotes.
std::string writeTag(std::string_view tag,
                     std::initializer_list<std::pair<std::string_view, std::string>> attributes,
                     bool closed = true) {
    std::string text = "<" + std::string(tag) + ">";
    for (const auto& [name, value] : attributes)
        setIn(text, name, value);
    return closed ? text.insert(text.size() - 1, "/") : text;
}

} // namespace

Editor::Editor() : mSavedText(mDocument.getText()) {}

void Editor::open(std::string text) {
    mDocument.load(std::move(text));
    mSavedText = mDocument.getText();
    mSelection.clear();
    mUndo.clear();
    mRedo.clear();
    mInGesture = mGestureChanged = false;
}

// Only the part that differs is changed, so that what is around it stays selected.
void Editor::replace(std::string text, const std::string& label) {
    Document().load(text); // or throws
    cancelGesture();
    const std::string& old = mDocument.getText();
    const size_t most = std::min(old.size(), text.size());
    size_t head = 0, tail = 0;
    while (head < most && old[head] == text[head])
        ++head;
    while (tail < most - head && old[old.size() - 1 - tail] == text[text.size() - 1 - tail])
        ++tail;
    perform(label, {{head, old.size() - tail - head, text.substr(head, text.size() - tail - head), -1}});
}

void Editor::setSavedText(std::string text) {
    mSavedText = std::move(text);
}

// Selection

bool Editor::isSelected(uint32_t id) const {
    return std::find(mSelection.begin(), mSelection.end(), id) != mSelection.end();
}

void Editor::select(std::vector<uint32_t> ids) {
    mSelection = std::move(ids);
    prune();
}

void Editor::toggle(uint32_t id) {
    if (std::erase(mSelection, id) == 0)
        mSelection.push_back(id);
    prune();
}

// Each once, and only what is there.
void Editor::prune() {
    std::set<uint32_t> seen;
    std::erase_if(mSelection,
                  [&](uint32_t id) { return mDocument.find(id) <= 0 || !seen.insert(id).second; });
}

std::vector<int> Editor::getSelected() const {
    std::vector<int> indices;
    for (const uint32_t id : mSelection)
        if (const int index = mDocument.find(id); index > 0)
            indices.push_back(index);
    std::sort(indices.begin(), indices.end());
    indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
    return indices;
}

std::vector<int> Editor::getSelected(Kind kind) const {
    std::vector<int> indices = getSelected();
    std::erase_if(indices, [&](int i) { return mDocument[i].kind != kind; });
    return indices;
}

// What is selected, without what is inside another selected element.
std::vector<int> Editor::getOutermost() const {
    std::vector<int> result;
    for (const int index : getSelected())
        if (result.empty() || !mDocument.isInside(index, result.back()))
            result.push_back(index);
    return result;
}

void Editor::selectIndices(const std::vector<int>& indices) {
    mSelection.clear();
    for (const int index : indices)
        if (index > 0 && index < mDocument.getSize())
            mSelection.push_back(mDocument[index].id);
}

// Undo

void Editor::start() {
    if (!mInGesture || !mGestureChanged)
        return;
    const Step done = std::move(mUndo.back());
    mUndo.pop_back();
    mGestureChanged = false;
    mDocument.apply(done.changes);
    selectIndices(done.before);
}

void Editor::perform(const std::string& label, std::vector<Change> changes, bool selectMade) {
    std::erase_if(changes, [this](const Change& change) {
        return mDocument.getText().compare(change.at, change.length, change.text) == 0;
    });
    if (changes.empty())
        return;
    Step done{label, {}, getSelected(), {}};
    done.changes = mDocument.apply(std::move(changes));
    if (selectMade)
        selectIndices(mDocument.getMade());
    prune();
    done.after = getSelected();
    mUndo.push_back(std::move(done));
    mRedo.clear();
    mGestureChanged = mInGesture;
}

bool Editor::step(std::vector<Step>& from, std::vector<Step>& to, bool undoing) {
    cancelGesture();
    if (from.empty())
        return false;
    Step done = std::move(from.back());
    from.pop_back();
    done.changes = mDocument.apply(std::move(done.changes));
    selectIndices(undoing ? done.before : done.after);
    to.push_back(std::move(done));
    return true;
}

bool Editor::undo() {
    return step(mUndo, mRedo, true);
}

bool Editor::redo() {
    return step(mRedo, mUndo, false);
}

std::string Editor::getUndoLabel() const {
    return mUndo.empty() ? std::string() : mUndo.back().label;
}

std::string Editor::getRedoLabel() const {
    return mRedo.empty() ? std::string() : mRedo.back().label;
}

void Editor::beginGesture() {
    endGesture();
    mInGesture = true;
}

void Editor::endGesture() {
    mInGesture = mGestureChanged = false;
}

void Editor::cancelGesture() {
    start();
    endGesture();
}

// Values

void Editor::set(const std::vector<int>& elements, const std::string& attribute, const std::string& value) {
    endGesture();
    std::vector<Change> changes;
    for (const int element : elements)
        changes.push_back(mDocument.setAttribute(element, attribute, value));
    perform("Set " + attribute, std::move(changes));
}

void Editor::setLengths(const std::vector<int>& spans, double length) {
    endGesture();
    std::vector<Change> changes;
    for (const int span : spans)
        setNumber(changes, span, "end", mDocument[span].end, double(mDocument[span].start) + length);
    perform("Set length", std::move(changes));
}

void Editor::rename(int element, const std::string& name) {
    endGesture();
    if (mDocument[element].kind != Kind::SECTION) {
        set({element}, "name", name);
        return;
    }
    const Element& section = mDocument[element];
    perform("Rename", {{section.from + 4, section.to - section.from - 7, " " + toComment(name) + " ", -1}});
}

// A number that stays the same keeps its spelling.
void Editor::setNumber(std::vector<Change>& changes, int element, const char* name, float old,
                       double value) const {
    if (formatNumber(value) != formatNumber(double(old)))
        changes.push_back(mDocument.setAttribute(element, name, formatNumber(value)));
}

void Editor::moveElement(std::vector<Change>& changes, int index, double seconds, double value) const {
    const Element& element = mDocument[index];
    switch (element.kind) {
    case Kind::SPAN:
        setNumber(changes, index, "end", element.end, double(element.end) + seconds);
        [[fallthrough]];
    case Kind::TRIGGER:
    case Kind::BOOKMARK:
        setNumber(changes, index, timeOf(element.kind), element.start, double(element.start) + seconds);
        break;
    case Kind::KEY:
        setNumber(changes, index, "time", element.start, double(element.start) + seconds);
        setNumber(changes, index, "value", element.number, double(element.number) + value);
        break;
    case Kind::SPLINE:
        for (const int key : mDocument.getChildren(index, Kind::KEY))
            moveElement(changes, key, seconds, value);
        break;
    default:
        break;
    }
}

void Editor::move(double seconds, double value) {
    start();
    const std::vector<int> elements = getOutermost();
    const auto limit = [&](int index) {
        const double first = double(mDocument[index].start);
        if (first >= 0)
            seconds = std::max(seconds, -first);
    };
    for (const int index : elements) {
        const Element& element = mDocument[index];
        if (element.kind != Kind::SPLINE)
            limit(index);
        else
            for (int i = index + 1; i < element.next; ++i)
                limit(i);
    }
    std::vector<Change> changes;
    for (const int index : elements)
        moveElement(changes, index, seconds, value);
    perform("Move", std::move(changes));
}

void Editor::resize(Edge edge, double seconds) {
    start();
    std::vector<Change> changes;
    for (const int index : getSelected(Kind::SPAN)) {
        const Element& span = mDocument[index];
        const double first = double(span.start), last = double(span.end);
        if (edge == Edge::LEFT) {
            const double least = std::min(0.0, first);
            setNumber(changes, index, "start", span.start,
                      std::max(least, std::min(first + seconds, last - SHORTEST)));
        } else {
            setNumber(changes, index, "end", span.end, std::max(last + seconds, first + SHORTEST));
        }
    }
    perform("Resize", std::move(changes));
}

void Editor::stretch(Edge edge, double seconds) {
    start();
    std::vector<Change> changes;
    for (const int index : getOutermost()) {
        const Element& span = mDocument[index];
        const double first = double(span.start), last = double(span.end), length = last - first;
        if (span.kind != Kind::SPAN || !(length > 0))
            continue;
        double to = edge == Edge::LEFT ? length - seconds : length + seconds;
        to = std::max(to, SHORTEST);
        if (edge == Edge::LEFT && first >= 0)
            to = std::min(to, last);
        if (edge == Edge::LEFT)
            setNumber(changes, index, "start", span.start, last - to);
        else
            setNumber(changes, index, "end", span.end, first + to);
        const double ratio = to / length;
        for (int i = index + 1; i < span.next; ++i) {
            const Element& inner = mDocument[i];
            if (inner.kind != Kind::SPAN && inner.kind != Kind::TRIGGER && inner.kind != Kind::KEY)
                continue;
            setNumber(changes, i, timeOf(inner.kind), inner.start, double(inner.start) * ratio);
            if (inner.kind == Kind::SPAN)
                setNumber(changes, i, "end", inner.end, double(inner.end) * ratio);
            if (inner.kind == Kind::TRIGGER && inner.repeat > 1)
                setNumber(changes, i, "delay", inner.delay, double(inner.delay) * ratio);
        }
    }
    perform("Stretch", std::move(changes));
}

void Editor::toggleEnabled() {
    start();
    const std::vector<int> spans = getSelected(Kind::SPAN);
    const bool on = std::any_of(spans.begin(), spans.end(), [this](int i) { return !mDocument[i].enabled; });
    std::vector<Change> changes;
    for (const int index : spans)
        if (mDocument[index].enabled != on)
            changes.push_back(mDocument.setAttribute(index, "state", on ? "on" : "off"));
    perform(on ? "Turn on" : "Turn off", std::move(changes));
}

// Swaps two neighbours; what is between them stays.
void Editor::reorder(int step) {
    start();
    const std::vector<int> selected = getSelected();
    if (selected.size() != 1 || step == 0)
        return;
    const int index = selected[0], parent = mDocument[index].parent;
    const Kind kind = mDocument[index].kind;
    if (kind != Kind::SPAN && kind != Kind::SECTION)
        return;
    int other = -1;
    for (int i = parent + 1; i < mDocument[parent].next; i = mDocument[i].next) {
        if (mDocument[i].kind != Kind::SPAN && mDocument[i].kind != Kind::SECTION)
            continue;
        if (step < 0 && i < index)
            other = i;
        if (step > 0 && i > index && other < 0)
            other = i;
    }
    if (other < 0)
        return;
    const Element &a = mDocument[std::min(index, other)], &b = mDocument[std::max(index, other)];
    const std::string& text = mDocument.getText();
    const std::string first = text.substr(a.from, a.to - a.from), second = text.substr(b.from, b.to - b.from);
    const size_t place = step < 0 ? a.from : a.from + second.size() + (b.from - a.to);
    perform("Change the order", {{a.from, a.to - a.from, second, -1}, {b.from, b.to - b.from, first, -1}});
    for (int i = 1; i < mDocument.getSize(); ++i)
        if (mDocument[i].from == place)
            selectIndices({i});
    if (!mUndo.empty())
        mUndo.back().after = getSelected();
}

// New elements

void Editor::insert(const std::string& label, int parent, int after, const std::string& text) {
    if (std::optional<Change> change = mDocument.insert(parent, after, text))
        perform(label, {std::move(*change)}, true);
}

// In front of an element, with its indent.
void Editor::insertBefore(const std::string& label, int next, const std::string& text) {
    std::optional<Change> change = mDocument.insert(mDocument[next].parent, next, text);
    if (!change)
        return;
    change->text = text + change->text.substr(0, change->text.size() - text.size());
    change->at = mDocument[next].from;
    perform(label, {std::move(*change)}, true);
}

void Editor::insertFirst(const std::string& label, int parent, const std::string& text) {
    if (parent + 1 < mDocument[parent].next)
        insertBefore(label, parent + 1, text);
    else
        insert(label, parent, -1, text);
}

void Editor::addSpan(int parent, const std::string& name, double begin, double end,
                     const std::vector<std::string>& curves) {
    endGesture();
    // After the selected sibling, so that it is drawn over it.
    int after = -1, under = -1;
    for (const int index : getSelected())
        if (mDocument[index].parent == parent &&
            (mDocument[index].kind == Kind::SPAN || mDocument[index].kind == Kind::SECTION))
            after = index;
    // Or else over what is drawn at its beginning.
    for (int i = parent + 1; after < 0 && i < mDocument[parent].next; i = mDocument[i].next)
        if (mDocument[i].kind == Kind::SPAN && double(mDocument[i].start) <= begin &&
            begin < double(mDocument[i].end))
            under = i;
    std::string text =
        writeTag("effect", {{"name", name}, {"start", formatNumber(begin)}, {"end", formatNumber(end)}},
                 curves.empty());
    for (const std::string& curve : curves)
        text += "\n\t" + writeTag("spline", {{"name", curve}, {"type", "linear"}}, false) + "\n\t\t" +
                writeTag("key", {{"time", "0"}, {"value", "1"}}) + "\n\t</spline>";
    insert("Add span", parent, after >= 0 ? after : under, curves.empty() ? text : text + "\n</effect>");
}

void Editor::addTrigger(int span, const std::string& name, const std::string& value, double time) {
    endGesture();
    const std::vector<int> triggers = mDocument.getChildren(span, Kind::TRIGGER);
    std::string text = writeTag("trigger", {{"name", name}});
    if (!value.empty())
        setIn(text, "value", value);
    setIn(text, "start", time);
    insert("Add trigger", span, triggers.empty() ? -1 : triggers.back(), text);
}

void Editor::addSpline(int span, const std::string& name, double value) {
    endGesture();
    int after = -1;
    for (int i = span + 1; i < mDocument[span].next; i = mDocument[i].next)
        if (mDocument[i].kind == Kind::TRIGGER || mDocument[i].kind == Kind::SPLINE)
            after = i;
    const double length = std::max(0.0, double(mDocument[span].end) - double(mDocument[span].start));
    const std::string number = formatNumber(value);
    std::string text = writeTag("spline", {{"name", name}, {"type", "linear"}}, false) + "\n\t" +
                       writeTag("key", {{"time", "0"}, {"value", number}});
    if (length > 0)
        text += "\n\t" + writeTag("key", {{"time", formatNumber(length)}, {"value", number}});
    insert("Add spline", span, after, text + "\n</spline>");
}

void Editor::addKey(int spline, double time, double value) {
    endGesture();
    int after = -1;
    for (const int key : mDocument.getChildren(spline, Kind::KEY))
        if (double(mDocument[key].start) <= time)
            after = key;
    const std::string text = writeTag("key", {{"time", formatNumber(time)}, {"value", formatNumber(value)}});
    if (after >= 0)
        insert("Add key", spline, after, text);
    else
        insertFirst("Add key", spline, text);
}

void Editor::addSection(int before, const std::string& name) {
    endGesture();
    const std::string text = "<!-- " + toComment(name) + " -->";
    if (before > 0)
        insertBefore("Add section", before, text);
    else
        insert("Add section", 0, -1, text);
}

void Editor::addBookmark(double time, const std::string& name) {
    start();
    int after = -1;
    for (int i = 1; i < mDocument.getSize(); i = mDocument[i].next)
        if (mDocument[i].kind == Kind::BOOKMARK || mDocument[i].kind == Kind::TEMPO)
            after = i;
    const std::string text = writeTag("bookmark", {{"name", name}, {"time", formatNumber(time)}});
    if (after >= 0)
        insert("Add bookmark", 0, after, text);
    else
        insertFirst("Add bookmark", 0, text);
}

void Editor::setTempo(const Tempo& tempo) {
    start();
    if (const std::vector<int> tempos = mDocument.getChildren(0, Kind::TEMPO); !tempos.empty()) {
        const int old = tempos[0];
        std::vector<Change> changes;
        setNumber(changes, old, "bpm", mDocument[old].number, double(tempo.bpm));
        if (mDocument[old].beats != tempo.beats)
            changes.push_back(mDocument.setAttribute(old, "beats", std::to_string(tempo.beats)));
        setNumber(changes, old, "start", mDocument[old].start, double(tempo.start));
        perform("Set tempo", std::move(changes));
        return;
    }
    insertFirst("Set tempo", 0,
                writeTag("tempo", {{"bpm", formatNumber(double(tempo.bpm))},
                                   {"beats", std::to_string(tempo.beats)},
                                   {"start", formatNumber(double(tempo.start))}}));
    select({}); // the panel keeps showing the tempo
}

// Removing, copying, splitting

void Editor::removeSelected() {
    start();
    std::vector<int> elements = getOutermost();
    // A spline that would lose its last key goes as a whole.
    std::vector<int> splines;
    for (const int index : elements) {
        if (mDocument[index].kind != Kind::KEY)
            continue;
        const int spline = mDocument[index].parent;
        const std::vector<int> keys = mDocument.getChildren(spline, Kind::KEY);
        if (index == keys[0] && std::includes(elements.begin(), elements.end(), keys.begin(), keys.end()))
            splines.push_back(spline);
    }
    elements.insert(elements.end(), splines.begin(), splines.end());
    std::vector<Change> changes; // those of the keys lie in that of their spline, and are left out
    for (const int index : elements)
        changes.push_back(mDocument.erase(index));
    perform("Delete", std::move(changes));
}

std::vector<Editor::Copied> Editor::getCopy() const {
    std::vector<Copied> copied;
    for (const int index : getOutermost()) {
        const Element& element = mDocument[index];
        if (element.kind == Kind::OTHER)
            continue;
        copied.push_back({element.kind, mDocument.getElementText(index), mDocument.getStart(index),
                          double(element.end) - double(element.start)});
    }
    return copied;
}

void Editor::cut() {
    copy();
    removeSelected();
}

// Spans become siblings of the selected span, or go to the end of the script; triggers and splines go into
// the selected span, keys into the selected curve.
void Editor::paste(double time) {
    start();
    double first = std::numeric_limits<double>::max();
    for (const Copied& each : mClipboard)
        first = std::min(first, each.time);
    int span = -1, spline = -1, sibling = -1;
    for (const int index : getSelected()) {
        for (int i = index; i > 0; i = mDocument[i].parent) {
            if (mDocument[i].kind == Kind::SPAN && span < 0)
                span = i;
            if (mDocument[i].kind == Kind::SPLINE && spline < 0)
                spline = i;
        }
        if (mDocument[index].kind == Kind::SPAN)
            sibling = index;
    }
    std::vector<Change> changes;
    for (const Copied& each : mClipboard) {
        const bool isSpan = each.kind == Kind::SPAN;
        const int parent = isSpan && sibling > 0 ? mDocument[sibling].parent
                           : each.kind == Kind::TRIGGER || each.kind == Kind::SPLINE ? span
                           : each.kind == Kind::KEY                                  ? spline
                                                                                     : 0;
        if (parent < 0)
            continue;
        const std::string text = getMoved(each, time + each.time - first - mDocument.getStart(parent));
        if (std::optional<Change> change = mDocument.insert(parent, isSpan ? sibling : -1, text))
            changes.push_back(std::move(*change));
    }
    perform("Paste", std::move(changes), true);
}

// The text of a copy that begins at `start`, in its parent's time.
std::string Editor::getMoved(const Copied& copied, double start) {
    std::string text = copied.text;
    if (copied.kind == Kind::SPAN || copied.kind == Kind::TRIGGER || copied.kind == Kind::KEY ||
        copied.kind == Kind::BOOKMARK)
        setIn(text, timeOf(copied.kind), start);
    if (copied.kind == Kind::SPAN)
        setIn(text, "end", start + copied.length);
    return text;
}

void Editor::duplicate() {
    start();
    std::vector<Change> changes;
    for (const int index : getOutermost()) {
        const Element& element = mDocument[index];
        if (element.kind == Kind::OTHER || element.kind == Kind::TEMPO)
            continue;
        std::string text = mDocument.getElementText(index);
        if (element.kind == Kind::SPAN) {
            const double end = double(element.end);
            setIn(text, "start", end);
            setIn(text, "end", end + (end - double(element.start)));
        }
        if (std::optional<Change> change = mDocument.insert(element.parent, index, text))
            changes.push_back(std::move(*change));
    }
    perform("Duplicate", std::move(changes), true);
}

// Times in the second half count from its start. Triggers before the cut fire at once there, as after a seek.
// In a curve that isn't smooth one key at the cut replaces those before it; a smooth one keeps all, since
// each slope depends on its neighbours.
std::string Editor::getSecondHalf(int span, double at) const {
    Document half;
    half.load("<script>\n" + mDocument.getElementText(span) + "\n</script>");
    std::vector<Change> changes;
    for (int i = 2; i < half[1].next;) {
        const Element& element = half[i];
        const double time = double(element.start) - at;
        int next = element.next;
        if (element.kind == Kind::TRIGGER) {
            changes.push_back(
                half.setAttribute(i, "start", formatNumber(element.repeat > 1 ? time : std::max(0.0, time))));
        } else if (element.kind == Kind::SPAN && double(element.end) <= at) {
            changes.push_back(half.erase(i));
        } else if (element.kind == Kind::SPAN) {
            changes.push_back(half.setAttribute(i, "start", formatNumber(time)));
            changes.push_back(half.setAttribute(i, "end", formatNumber(double(element.end) - at)));
        } else if (element.kind == Kind::SPLINE) {
            int last = -1; // the key in force at the cut
            const std::vector<int> keys = half.getChildren(i, Kind::KEY);
            for (const int k : keys)
                if (double(half[k].start) <= at && (last < 0 || half[k].start >= half[last].start))
                    last = k;
            const double value = double(makeSpline(half, i).evaluate(float(at)));
            for (const int k : keys) {
                const bool before = double(half[k].start) <= at && element.mode != mathbase::SPLINE_SMOOTH;
                if (before && k != last) {
                    changes.push_back(half.erase(k));
                } else if (before) {
                    changes.push_back(half.setAttribute(k, "time", "0"));
                    changes.push_back(half.setAttribute(k, "value", formatNumber(value)));
                } else {
                    changes.push_back(half.setAttribute(k, "time", formatNumber(double(half[k].start) - at)));
                }
            }
        }
        i = next;
    }
    half.apply(std::move(changes));
    std::string text = half.getElementText(1);
    setIn(text, "start", double(mDocument[span].start) + at);
    return text;
}

void Editor::cutFirstHalf(std::vector<Change>& changes, int span, double at) const {
    setNumber(changes, span, "end", mDocument[span].end, double(mDocument[span].start) + at);
    for (int i = span + 1; i < mDocument[span].next; i = mDocument[i].next) {
        const Element& element = mDocument[i];
        if ((element.kind == Kind::TRIGGER || element.kind == Kind::SPAN) && double(element.start) >= at) {
            changes.push_back(mDocument.erase(i));
        } else if (element.kind == Kind::SPAN) {
            setNumber(changes, i, "end", element.end, std::min(double(element.end), at));
        } else if (element.kind == Kind::SPLINE && element.mode != mathbase::SPLINE_SMOOTH) {
            // The first key after the cut is moved to it; the others go.
            std::vector<int> keys = mDocument.getChildren(i, Kind::KEY);
            std::erase_if(keys, [&](int k) { return !(double(mDocument[k].start) > at); });
            const auto next = std::min_element(keys.begin(), keys.end(), [&](int a, int b) {
                return mDocument[a].start < mDocument[b].start;
            });
            for (const int k : keys) {
                if (k != *next) {
                    changes.push_back(mDocument.erase(k));
                } else {
                    changes.push_back(mDocument.setAttribute(k, "time", formatNumber(at)));
                    changes.push_back(mDocument.setAttribute(k, "value", formatNumber(evaluate(i, at))));
                }
            }
        }
    }
}

void Editor::split(double time) {
    start();
    std::vector<Change> changes;
    for (const int index : getOutermost()) {
        const Element& span = mDocument[index];
        const double at = time - mDocument.getStart(index);
        const double length = double(span.end) - double(span.start);
        if (span.kind != Kind::SPAN || !(at >= SHORTEST) || !(at <= length - SHORTEST))
            continue;
        std::optional<Change> second = mDocument.insert(span.parent, index, getSecondHalf(index, at));
        if (!second)
            continue;
        cutFirstHalf(changes, index, at);
        changes.push_back(std::move(*second));
    }
    perform("Split", std::move(changes));
}

// Snapping

double nearest(double value, double best, double candidate) {
    return std::fabs(candidate - value) < std::fabs(best - value) ? candidate : best;
}

double Snap::operator()(double time) const {
    if (!on)
        return time;
    double best = time + 2 * reach + 1;
    for (const double target : targets)
        best = nearest(time, best, target);
    if (step > 0) {
        const double origin = double(tempo.start);
        best = nearest(time, best, origin + std::round((time - origin) / step) * step);
    }
    return std::fabs(best - time) <= reach ? best : time;
}

double Snap::shift(double time, std::span<const double> edges) const {
    double best = time;
    double least = reach;
    bool found = false;
    for (const double edge : edges) {
        const double snapped = (*this)(edge + time);
        const double distance = std::fabs(snapped - edge - time);
        if (snapped != edge + time && (!found || distance < least)) {
            best = snapped - edge;
            least = distance;
            found = true;
        }
    }
    return best;
}

std::vector<double> getEdges(const Editor& editor) {
    const Document& document = editor.getDocument();
    std::vector<double> edges;
    for (int i = 1; i < document.getSize();) {
        const Element& element = document[i];
        if (editor.isSelected(element.id)) {
            i = element.next;
            continue;
        }
        if (element.kind == Kind::SPAN || element.kind == Kind::BOOKMARK)
            edges.push_back(document.getStart(i));
        if (element.kind == Kind::SPAN)
            edges.push_back(document.getEnd(i));
        ++i;
    }
    return edges;
}

} // namespace zentrak::studio
