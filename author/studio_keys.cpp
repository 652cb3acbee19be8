// The commands of the studio: keys, and menus.

#include "dis_key.h"
#include "studio_window.h"

namespace zentrak::studio {

using namespace display;

const std::vector<Window::Command>& Window::getCommands() {
    constexpr int CTRL = KEYMOD_LCTRL, SHIFT = KEYMOD_LSHIFT, ALT = KEYMOD_LALT;
    using W = Window;
    static const std::vector<Command> commands = {
        {KEY_SPACE, 0, "Space", "play and stop", &W::togglePlay},
        {KEY_p, 0, "P", "play from where the mouse is", &W::playFromMouse},
        {KEY_HOME, 0, "Home, End", "to the beginning, to the end", &W::goToStart},
        {KEY_END, 0, "", "", &W::goToEnd},
        {KEY_PAGEDOWN, 0, "Page Up, Page Down", "to the bookmark before, after", &W::nextBookmark},
        {KEY_PAGEUP, 0, "", "", &W::previousBookmark},
        {KEY_l, 0, "L", "loop over the selection; again: no loop", &W::toggleLoop},
        {KEY_m, 0, "M", "mute", &W::toggleMute},
        {KEY_r, 0, "R", "replay spans unseen after a seek", &W::toggleReplay},
        {KEY_f, 0, "F", "the timeline follows the time", &W::toggleFollow},
        {KEY_n, 0, "N", "snapping; Alt pressed in a drag holds it off", &W::toggleSnap},
        {KEY_TAB, 0, "Tab", "the picture alone, and back", &W::togglePicture},
        {0, 0, "Left, Right", "by a step of the grid (Ctrl 0.01 s, Shift a bar)", nullptr},
        {0, 0, "Up, Down", "a key's value by 0.01 (Shift: 0.1, Ctrl: 1)", nullptr},
        {KEY_a, 0, "A", "add an effect, a trigger, a curve", &W::openAddMenu},
        {KEY_s, 0, "S", "split the selected spans at the time now", &W::split},
        {KEY_d, CTRL, "Ctrl+D", "duplicate", &W::duplicate},
        {KEY_DEL, 0, "Del", "delete", &W::remove},
        {KEY_e, 0, "E", "turn spans off and on", &W::toggleEnabled},
        {KEY_F2, 0, "F2", "rename", &W::rename},
        {KEY_UP, ALT, "Alt+Up, Alt+Down", "draw earlier, later", &W::drawEarlier},
        {KEY_DOWN, ALT, "", "", &W::drawLater},
        {KEY_b, 0, "B", "bookmark at the time now", &W::addBookmark},
        {KEY_g, 0, "G", "section before the selected span, or at the time now", &W::addSection},
        {KEY_ENTER, 0, "Return", "unfold and fold the selection", &W::toggleOpen},
        {KEY_RIGHT, ALT, "Alt+Right, Alt+Left", "unfold all, fold all", &W::openAll},
        {KEY_LEFT, ALT, "", "", &W::closeAll},
        {KEY_c, CTRL, "Ctrl+C, X, V", "copy, cut, paste at the time now", &W::copy},
        {KEY_x, CTRL, "", "", &W::cut},
        {KEY_v, CTRL, "", "", &W::paste},
        {KEY_a, CTRL, "Ctrl+A", "select all spans (Shift: and bookmarks, from now on)", &W::selectAll},
        {KEY_a, CTRL | SHIFT, "", "", &W::selectLater},
        {KEY_z, CTRL, "Ctrl+Z, Ctrl+Y", "undo, redo", &W::undo},
        {KEY_y, CTRL, "", "", &W::redo},
        {KEY_z, CTRL | SHIFT, "", "", &W::redo},
        {KEY_s, CTRL, "Ctrl+S", "save", &W::save},
        {KEY_o, CTRL, "Ctrl+O", "another script of the setup file", &W::chooseScript},
        {KEY_F9, 0, "F9", "the player's own editor, and back", &W::togglePreview},
        {KEY_q, CTRL, "Ctrl+Q", "leave", &W::quit},
        {KEY_ESC, 0, "Esc", "give up what is dragged; select nothing", &W::escape},
        {KEY_EQUALS, 0, "+, -, Ctrl+0", "zoom in, zoom out, all of the show", &W::zoomIn},
        {KEY_PLUS, 0, "", "", &W::zoomIn},
        {KEY_PLUS, SHIFT, "", "", &W::zoomIn},
        {KEY_EQUALS, SHIFT, "", "", &W::zoomIn},
        {KEY_KP_ADD, 0, "", "", &W::zoomIn},
        {KEY_MINUS, 0, "", "", &W::zoomOut},
        {KEY_KP_SUBTRACT, 0, "", "", &W::zoomOut},
        {KEY_0, CTRL, "", "", &W::fit},
        {KEY_z, 0, "Z", "zoom to the selection", &W::zoomToSelection},
        {KEY_EQUALS, CTRL, "Ctrl and +, -", "a larger, a smaller interface", &W::larger},
        {KEY_EQUALS, CTRL | SHIFT, "", "", &W::larger},
        {KEY_PLUS, CTRL, "", "", &W::larger},
        {KEY_PLUS, CTRL | SHIFT, "", "", &W::larger},
        {KEY_MINUS, CTRL, "", "", &W::smaller},
        {0, 0, "Click, Shift or Ctrl", "select; more of it", nullptr},
        {0, 0, "Drag on empty ground", "select by a box", nullptr},
        {0, 0, "Drag, drag an end", "move; one end alone, with Shift what is inside too", nullptr},
        {0, 0, "Double click", "bar: unfold; curve: add key; name: rename; ruler: play", nullptr},
        {0, 0, "Ruler", "seek; Shift and drag: loop; click with Shift: no loop", nullptr},
        {0, 0, "Wheel", "rows; Ctrl: zoom; Shift: time; middle button: pan", nullptr},
        {KEY_F1, 0, "F1", "this page", &W::help},
    };
    return commands;
}

void Window::help() {
    std::vector<std::pair<std::string, std::string>> rows;
    for (const Command& command : getCommands())
        if (command.text[0] != '\0')
            rows.emplace_back(command.name, command.text);
    mOverlay->openHelp(std::move(rows));
}

// Left and right move in time, up and down in value.
bool Window::nudge(const KeyEvent& event) {
    const bool left = event.key == KEY_LEFT, right = event.key == KEY_RIGHT;
    const bool up = event.key == KEY_UP, down = event.key == KEY_DOWN;
    if (mTimeline->isDragging())
        return false;
    if (left || right) {
        const Tempo tempo = mEditor.getDocument().getTempo();
        const double step = event.ctrl()           ? 0.01
                            : event.shift()        ? tempo.getBar()
                            : mTimeline->mSnapping ? mTimeline->getGrid()
                                                   : 0.1;
        nudgeTime(left ? -step : step);
        return true;
    }
    if (!up && !down)
        return false;
    const double step = event.ctrl() ? 1 : event.shift() ? 0.1 : 0.01;
    if (mEditor.getSelected(Kind::KEY).empty() && mEditor.getSelected(Kind::SPLINE).empty())
        mTimeline->mScrollRows += up ? -Timeline::BAR_HEIGHT : Timeline::BAR_HEIGHT;
    else
        mEditor.move(0, up ? step : -step);
    return true;
}

void Window::nudgeTime(double by) {
    if (mEditor.getSelection().empty())
        mShow.seek(std::clamp(mShow.getTime() + by, 0.0, mShow.getLength()));
    else
        mEditor.move(by, 0);
}

void Window::quit() {
    if (onQuit() != BLOCK)
        mShow.getDisplay().mQuittingBlocking = true;
}

void Window::undo() {
    const std::string label = mEditor.getUndoLabel();
    say(mEditor.undo() ? "Undone: " + label : "There is nothing to undo");
}

void Window::redo() {
    const std::string label = mEditor.getRedoLabel();
    say(mEditor.redo() ? "Done again: " + label : "There is nothing to redo");
}

void Window::playFromMouse() {
    if (!mTimeline->isMouseInside())
        return;
    mTimeline->seekLine(mTimeline->makeSnap(false)(mTimeline->getMouseTime()));
    mShow.setPlaying(true);
}

void Window::goToStart() {
    mShow.seek(0);
    mTimeline->mScrollTime = -10 / mTimeline->mScale;
}

void Window::goToEnd() {
    mShow.seek(mShow.getLength());
    mTimeline->mScrollTime = mShow.getLength();
}

void Window::seekBookmark(int direction) {
    const Document& document = mEditor.getDocument();
    const double now = mShow.getTime();
    int best = -1;
    double least = 0; // seconds from now, in that direction
    for (const int bookmark : document.getChildren(0, Kind::BOOKMARK)) {
        const double distance = direction * (double(document[bookmark].start) - now);
        if (distance <= 0.01 || (best > 0 && distance >= least))
            continue;
        best = bookmark;
        least = distance;
    }
    if (best < 0) {
        say(direction > 0 ? "There is no bookmark after this" : "There is no bookmark before this");
        return;
    }
    mTimeline->seekLine(double(document[best].start));
    say(document[best].name);
    const float x = mTimeline->toX(mShow.getTime());
    if (x < mTimeline->getAxis().x1 || x > mTimeline->getAxis().x2)
        mTimeline->mScrollTime =
            mShow.getTime() - 0.3 * double(mTimeline->getAxis().getWidth()) / mTimeline->mScale;
}

void Window::insertBookmark(double time) {
    mEditor.addBookmark(std::max(0.0, time), "Bookmark");
    mPanel->editField("Name");
}

void Window::addBookmark() {
    insertBookmark(mTimeline->makeSnap(false)(mShow.getTime()));
}

void Window::revealSelection() {
    mTimeline->update();
    if (const std::vector<int> selected = mEditor.getSelected(); !selected.empty())
        mTimeline->reveal(selected[0]);
}

// Before the outermost span around an element; without one, before the first span that begins at this time or
// later.
void Window::insertSection(int element, double time) {
    const Document& document = mEditor.getDocument();
    int before = std::max(element, 0);
    while (document[before].parent > 0)
        before = document[before].parent;
    for (const int span : document.getChildren(0, Kind::SPAN))
        if (before == 0 && double(document[span].start) >= time)
            before = span;
    mEditor.addSection(before, "Section");
    revealSelection();
    mPanel->editField("Name");
}

void Window::addSection() {
    const std::vector<int> spans = mEditor.getSelected(Kind::SPAN);
    insertSection(spans.empty() ? 0 : spans[0], mShow.getTime());
}

void Window::split() {
    const size_t before = mEditor.getUndoCount();
    mEditor.split(mTimeline->makeSnap(false)(mShow.getTime()));
    if (mEditor.getUndoCount() == before)
        say("No selected span covers the time now");
}

void Window::copy() {
    mEditor.copy();
    say(std::to_string(mEditor.getSelection().size()) + " copied");
}

void Window::paste() {
    if (!mEditor.canPaste()) {
        say("Nothing was copied");
        return;
    }
    pasteAt(mTimeline->makeSnap(false)(mShow.getTime()));
}

void Window::pasteAt(double time) {
    const size_t before = mEditor.getUndoCount();
    mEditor.paste(time);
    if (mEditor.getUndoCount() == before)
        say("Select the span or the curve that it goes into");
    revealSelection();
}

void Window::duplicate() {
    mEditor.duplicate();
    revealSelection();
}

void Window::selectAll() {
    std::vector<uint32_t> ids;
    for (const int span : mEditor.getDocument().getChildren(0, Kind::SPAN))
        ids.push_back(mEditor.getDocument()[span].id);
    mEditor.select(std::move(ids));
}

// For all that follows to be moved at once.
void Window::selectLater() {
    const Document& document = mEditor.getDocument();
    std::vector<uint32_t> ids;
    for (const Kind kind : {Kind::SPAN, Kind::BOOKMARK})
        for (const int index : document.getChildren(0, kind))
            if (document.getStart(index) > mShow.getTime() - 1e-3)
                ids.push_back(document[index].id);
    mEditor.select(std::move(ids));
}

void Window::escape() {
    if (mTimeline->isDragging())
        mTimeline->cancelDrag();
    else if (mPictureAlone)
        mPictureAlone = false;
    else
        mEditor.select({});
}

void Window::rename() {
    const std::vector<int> selected = mEditor.getSelected();
    if (selected.empty())
        return;
    mPanel->update();
    for (const char* label : {"Name", "Effect", "Curve", "Trigger"})
        if (mPanel->findField(label)) {
            mPanel->editField(label);
            return;
        }
}

// The time that the selected spans cover; none if there are none.
std::optional<std::pair<double, double>> Window::getSelectedTime() const {
    const Document& document = mEditor.getDocument();
    std::pair<double, double> range(1e9, -1e9);
    for (const int index : mEditor.getSelected(Kind::SPAN)) {
        const double origin = document.getOrigin(index);
        range.first = std::min(range.first, std::max(0.0, origin + double(document[index].start)));
        range.second = std::max(range.second, origin + double(document[index].end));
    }
    return range.second > range.first ? std::optional(range) : std::nullopt;
}

void Window::zoomToSelection() {
    if (const auto range = getSelectedTime())
        mTimeline->show(range->first, range->second);
    else
        say("No span is selected");
}

void Window::toggleLoop() {
    const Document& document = mEditor.getDocument();
    if (mShow.getLoop()) {
        mShow.setLoop(std::nullopt);
    } else if (const auto range = getSelectedTime()) {
        mShow.setLoop(range);
    } else {
        const double bar = document.getTempo().getBar(), start = double(document.getTempo().start);
        const double first = std::max(0.0, start + std::floor((mShow.getTime() - start) / bar) * bar);
        mShow.setLoop(std::pair(first, first + 2 * bar));
    }
}

void Window::toggleReplay() {
    mShow.setReplaying(!mShow.isReplaying());
    say(mShow.isReplaying() ? "After a seek, spans are replayed from their beginning"
                            : "Seeks are immediate");
}

void Window::toggleOpen() {
    for (const int index : mEditor.getSelected())
        if (mEditor.getDocument()[index].kind == Kind::SPAN ||
            mEditor.getDocument()[index].kind == Kind::SECTION)
            mTimeline->setOpen(index, !mTimeline->isOpen(index));
}

// Menus

void Window::openAddMenu() {
    // To the span that is selected, or that holds what is selected.
    std::vector<int> spans;
    for (int index : mEditor.getSelected()) {
        while (index > 0 && mEditor.getDocument()[index].kind != Kind::SPAN)
            index = mEditor.getDocument()[index].parent;
        if (index > 0 && (spans.empty() || spans.back() != index))
            spans.push_back(index);
    }
    const Box2 axis = mTimeline->getAxis();
    const Vector2f place(std::clamp(mTimeline->toX(mShow.getTime()), axis.x1, axis.x2 - 200), axis.y1 + 20);
    const double time = mTimeline->makeSnap(false)(mShow.getTime());
    if (spans.size() != 1) {
        openEffectMenu(place, 0, time);
        return;
    }
    std::vector<panorama::MenuItem> items;
    addSpanItems(items, place, spans[0], time);
    items.push_back({"Effect...", "", [this, place, time] { openEffectMenu(place, 0, time); }});
    mOverlay->openMenu(place, std::move(items), "Add to " + mEditor.getDocument()[spans[0]].name);
}

void Window::openMenu(Vector2f place, int element, double time, double value) {
    std::vector<panorama::MenuItem> items;
    if (element > 0)
        addElementItems(items, place, element, time, value);
    else if (place.y < mTimeline->getAxis().y1)
        addRulerItems(items, time);
    if (element <= 0 || mEditor.getDocument()[element].kind == Kind::SECTION ||
        mEditor.getDocument()[element].kind == Kind::SPAN) {
        if (!items.empty())
            items.push_back({});
        items.push_back({"Effect here...", "A", [this, place, time] { openEffectMenu(place, 0, time); }});
        items.push_back({"Section here", "G", [this, element, time] { insertSection(element, time); }});
        items.push_back({"Paste here", "Ctrl+V", [this, time] { pasteAt(time); }, mEditor.canPaste()});
    }
    items.push_back({"Play from here", "P", [this, time] {
                         mTimeline->seekLine(time);
                         mShow.setPlaying(true);
                     }});
    mOverlay->openMenu(place, std::move(items));
}

void Window::addRulerItems(std::vector<panorama::MenuItem>& items, double time) {
    items.push_back({"Bookmark here", "B", [this, time] { insertBookmark(time); }});
    items.push_back({"Loop from here for two bars", "", [this, time] {
                         mShow.setLoop(std::pair(time, time + 2 * mEditor.getDocument().getTempo().getBar()));
                     }});
    items.push_back({"No loop", "L", [this] { mShow.setLoop(std::nullopt); }, mShow.getLoop().has_value()});
    const double exact = mTimeline->getMouseTime();
    items.push_back({"The first bar begins here", "", [this, exact] {
                         Tempo tempo = mEditor.getDocument().getTempo();
                         tempo.start = float(exact);
                         mEditor.setTempo(tempo);
                     }});
    items.push_back({"Tempo...", "", [this] {
                         mEditor.select({});
                         mPanel->editField("Tempo");
                     }});
}

void Window::addElementItems(std::vector<panorama::MenuItem>& items, Vector2f place, int element, double time,
                             double value) {
    const Document& document = mEditor.getDocument();
    const Kind kind = document[element].kind;
    if (kind == Kind::SPAN) {
        addSpanItems(items, place, element, time);
        items.push_back({});
        items.push_back({"Split here", "S", [this, time] { mEditor.split(time); }});
        items.push_back(
            {document[element].enabled ? "Turn off" : "Turn on", "E", [this] { toggleEnabled(); }});
        items.push_back({"Draw earlier", "Alt+Up", [this] { drawEarlier(); }});
        items.push_back({"Draw later", "Alt+Down", [this] { drawLater(); }});
        items.push_back({"Loop over it", "L", [this] {
                             mShow.setLoop(std::nullopt);
                             toggleLoop();
                         }});
    }
    if (kind == Kind::SPLINE) {
        const double local = time - document.getOrigin(element);
        items.push_back(
            {"Add key here", "", [this, element, local, value] { mEditor.addKey(element, local, value); }});
        for (const char* type : {"square", "linear", "smooth"})
            items.push_back({std::string("Make it ") + type, "",
                             [this, element, type] { mEditor.set({element}, "type", type); }});
    }
    if (!items.empty())
        items.push_back({});
    items.push_back({"Rename", "F2",
                     [this, element] {
                         mEditor.select({mEditor.getDocument()[element].id});
                         rename();
                     },
                     kind != Kind::KEY});
    items.push_back({"Copy", "Ctrl+C", [this] { copy(); }});
    items.push_back({"Cut", "Ctrl+X", [this] { cut(); }});
    items.push_back({"Duplicate", "Ctrl+D", [this] { duplicate(); }});
    items.push_back({"Delete", "Del", [this] { remove(); }});
}

void Window::addSpanItems(std::vector<panorama::MenuItem>& items, Vector2f place, int span, double time) {
    const Document& document = mEditor.getDocument();
    const double local = time - document.getOrigin(span) - double(document[span].start);
    items.push_back({"Trigger...", "", [this, place, span, local] { openTriggerMenu(place, span, local); }});
    items.push_back({"Curve...", "", [this, place, span] { openCurveMenu(place, span); }});
    items.push_back(
        {"Nested effect...", "", [this, place, span, local] { openEffectMenu(place, span, local); }});
}

void Window::openEffectMenu(Vector2f place, int parent, double time) {
    const double start = std::max(0.0, time);
    const auto add = [this, parent, start](const std::string& name, const std::vector<std::string>& curves) {
        double end = start + 4 * mEditor.getDocument().getTempo().getBar();
        if (parent > 0) {
            const Element& span = mEditor.getDocument()[parent];
            end = std::max(start + 1, double(span.end) - double(span.start));
        }
        mEditor.addSpan(parent, name, start, end, curves);
        revealSelection();
    };
    std::vector<panorama::MenuItem> items;
    for (const kindler::EffectNames& names : kindler::effectNames()) {
        // Without a curve of this name the effect would not be seen.
        std::vector<std::string> curves(names.splines.begin(), names.splines.end());
        std::erase_if(curves, [](const std::string& curve) { return curve != "alpha"; });
        items.push_back(
            {names.name, "", [add, curves, name = std::string(names.name)] { add(name, curves); }});
    }
    items.push_back({"(group)", "", [add] { add("group", {}); }});
    mOverlay->openMenu(place, std::move(items), "Effect: type or choose");
}

void Window::openTriggerMenu(Vector2f place, int span, double time) {
    std::vector<panorama::MenuItem> items;
    const auto add = [&](const std::string& name, const std::string& value) {
        items.push_back({value.empty() ? name : name + " = " + value, "", [this, span, time, name, value] {
                             mEditor.addTrigger(span, name, value, std::max(0.0, time));
                             mTimeline->setOpen(span, true);
                         }});
    };
    if (const kindler::EffectNames* const effect = findNames(mEditor.getDocument()[span].name)) {
        for (const kindler::TriggerNames& trigger : effect->triggers) {
            for (const char* word : trigger.words)
                add(trigger.name, word);
            if (trigger.words.empty())
                add(trigger.name, "");
        }
        if (effect->anyTrigger)
            add("next", "");
    }
    if (items.empty())
        items.push_back({"This effect knows no triggers", "", nullptr, false});
    mOverlay->openMenu(place, std::move(items), "Trigger of " + mEditor.getDocument()[span].name);
}

void Window::openCurveMenu(Vector2f place, int span) {
    std::vector<panorama::MenuItem> items;
    const Document& document = mEditor.getDocument();
    const std::vector<int> curves = document.getChildren(span, Kind::SPLINE);
    if (const kindler::EffectNames* const effect = findNames(document[span].name)) {
        for (const char* spline : effect->splines) {
            const bool there =
                std::any_of(curves.begin(), curves.end(), [&](int i) { return document[i].name == spline; });
            items.push_back({spline, there ? "is there" : "",
                             [this, span, name = std::string(spline)] {
                                 mEditor.addSpline(span, name, name == "alpha" ? 1 : 0);
                                 mTimeline->setOpen(span, true);
                             },
                             !there});
        }
    }
    if (items.empty())
        items.push_back({"This effect knows no curves", "", nullptr, false});
    mOverlay->openMenu(place, std::move(items), "Curve of " + mEditor.getDocument()[span].name);
}

} // namespace zentrak::studio
