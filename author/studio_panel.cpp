#include "studio_panel.h"

namespace zentrak::studio {

using panorama::Event;

const kindler::EffectNames* findNames(const std::string& effect) {
    for (const kindler::EffectNames& names : kindler::effectNames())
        if (effect == names.name)
            return &names;
    return nullptr;
}

namespace {

constexpr float LABELS = 78; // pixels before a field
constexpr float FIELD = 112; // its width
constexpr float ROW = 25;
constexpr float TOP = 52;

} // namespace

Panel::Panel(Editor& editor, panorama::Overlay& overlay) : mEditor(editor), mOverlay(overlay) {
    mName = mType = "panel of numbers";
    for (size_t i = 0; i < FIELDS; ++i) {
        auto* const field = new panorama::EntryField;
        field->mRaiseOnFocus = false;
        field->setVisible(false);
        field->mOnDone = [this, i](const std::string& text) { apply(i, text); };
        field->mOnTab = [this, i](int step) {
            const size_t count = mEntries.size();
            if (count > 0)
                mFields[(i + count + size_t(step)) % count]->edit();
        };
        mFields.push_back(field);
        addControl(field, -1);
    }
    mRaiseOnFocus = false;
}

panorama::Control* Panel::clone() {
    return nullptr;
}

bool Panel::hasKeys() const {
    for (panorama::EntryField* field : mFields)
        if (field->hasKeys())
            return true;
    return false;
}

void Panel::leaveKeys() {
    for (panorama::EntryField* field : mFields)
        field->finish();
}

panorama::EntryField* Panel::findField(const std::string& label) {
    for (size_t i = 0; i < mEntries.size(); ++i)
        if (mEntries[i].label == label)
            return mFields[i];
    return nullptr;
}

void Panel::editField(const std::string& label) {
    update();
    if (panorama::EntryField* const field = findField(label))
        field->edit();
}

void Panel::update() {
    if (mVersion == mEditor.getDocument().getVersion() && mFieldsOf == mEditor.getSelection())
        return;
    mVersion = mEditor.getDocument().getVersion();
    mFieldsOf = mEditor.getSelection();
    fill();
    for (size_t i = 0; i < FIELDS; ++i) {
        panorama::EntryField& field = *mFields[i];
        const bool used = i < mEntries.size();
        if (field.getVisible() != used)
            field.setVisible(used);
        if (!used)
            continue;
        const Box2 box = getFieldBox(i), &all = mArea.world;
        field.setArea(Box2(box.x1 - all.x1, box.y1 - all.y1, box.x2 - all.x1, box.y2 - all.y1));
        field.show(mEntries[i].value);
        field.mOnStep = nullptr;
        if (mEntries[i].type != Entry::TEXT)
            field.mOnStep = [this, i](int step) { nudge(i, step); };
    }
}

void Panel::addNumber(const std::vector<int>& elements, const std::string& label,
                      const std::string& attribute, double (*get)(const Element&), const std::string& hint) {
    const Document& document = mEditor.getDocument();
    const std::string first = formatNumber(get(document[elements[0]]));
    bool same = true;
    for (const int index : elements)
        same = same && formatNumber(get(document[index])) == first;
    add({label, attribute, same ? hint : "various", same ? first : "", {}, Entry::NUMBER});
}

// Seconds from the beginning of the first bar to the time 0 that an element counts from.
double Panel::getShift(int element) const {
    return mEditor.getDocument().getOrigin(element) - double(mEditor.getDocument().getTempo().start);
}

void Panel::addTime(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                    double (*get)(const Element&)) {
    addNumber(elements, label, attribute, get);
    Entry& entry = mEntries.back();
    const bool length = attribute.empty() || attribute == "delay";
    entry.type = length ? Entry::LENGTH : Entry::TIME;
    const std::optional<double> seconds = parseNumber(entry.value);
    if (!seconds)
        return;
    const double bars =
        (*seconds + (length ? 0 : getShift(elements[0]))) / mEditor.getDocument().getTempo().getBar();
    const std::string number = formatNumber(std::round(bars * 100) / 100);
    entry.hint = length ? "s, " + number + (number == "1" ? " bar" : " bars") : "s, bar " + number;
}

void Panel::addText(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                    std::vector<std::string> choices) {
    const auto get = [&](int index) {
        return attribute == "value" ? mEditor.getDocument()[index].value : mEditor.getDocument()[index].name;
    };
    bool same = true;
    for (const int index : elements)
        same = same && get(index) == get(elements[0]);
    add({label, attribute, "", same ? get(elements[0]) : "", std::move(choices)});
}

void Panel::addSpan(const std::vector<int>& elements) {
    std::vector<std::string> names;
    for (const kindler::EffectNames& each : kindler::effectNames())
        names.push_back(each.name);
    addText(elements, "Effect", "name", std::move(names));
    addTime(elements, "Start", "start", [](const Element& e) { return double(e.start); });
    addTime(elements, "End", "end", [](const Element& e) { return double(e.end); });
    addTime(elements, "Length", "", [](const Element& e) { return double(e.end) - double(e.start); });
    const bool on = mEditor.getDocument()[elements[0]].enabled;
    add({"State", "state", "", on ? "on" : "off", {"on", "off"}});
}

void Panel::addTrigger(const std::vector<int>& elements) {
    const Document& document = mEditor.getDocument();
    const Element& trigger = document[elements[0]];
    std::vector<std::string> names, words;
    if (const kindler::EffectNames* const effect = findNames(document[trigger.parent].name))
        for (const kindler::TriggerNames& each : effect->triggers) {
            names.push_back(each.name);
            if (trigger.name == each.name)
                words.assign(each.words.begin(), each.words.end());
        }
    addText(elements, "Trigger", "name", std::move(names));
    addText(elements, "Value", "value", std::move(words));
    addTime(elements, "Start", "start", [](const Element& e) { return double(e.start); });
    addNumber(
        elements, "Repeat", "repeat", [](const Element& e) { return double(e.repeat); }, "times in all");
    addTime(elements, "Delay", "delay", [](const Element& e) { return double(e.delay); });
}

void Panel::addKey(const std::vector<int>& elements) {
    addTime(elements, "Time", "time", [](const Element& e) { return double(e.start); });
    addNumber(elements, "Value", "value", [](const Element& e) { return double(e.number); });
}

void Panel::addSpline(const std::vector<int>& elements) {
    const Document& document = mEditor.getDocument();
    const Element& spline = document[elements[0]];
    std::vector<std::string> names;
    if (const kindler::EffectNames* const effect = findNames(document[spline.parent].name))
        names.assign(effect->splines.begin(), effect->splines.end());
    addText(elements, "Curve", "name", std::move(names));
    const std::vector<std::string> modes = {"square", "linear", "smooth"};
    add({"Type", "type", "", modes[size_t(std::clamp(spline.mode, 0, 2))], modes});
}

void Panel::addTempo() {
    const Tempo tempo = mEditor.getDocument().getTempo();
    add({"Tempo", "bpm", "beats/min", formatNumber(double(tempo.bpm)), {}, Entry::NUMBER});
    add({"Beats", "beats", "in a bar", std::to_string(tempo.beats), {}, Entry::NUMBER});
    add({"First bar", "tempo start", "seconds", formatNumber(double(tempo.start)), {}, Entry::NUMBER});
}

// All that are of the kind that was selected first.
std::vector<int> Panel::getElements() const {
    const Document& document = mEditor.getDocument();
    std::vector<int> elements;
    for (const uint32_t id : mEditor.getSelection())
        if (const int index = document.find(id);
            index > 0 && (elements.empty() || document[index].kind == document[elements[0]].kind))
            elements.push_back(index);
    return elements;
}

void Panel::fill() {
    static const char* const KINDS[] = {"Script",  "Span",     "Trigger", "Curve", "Key",
                                        "Section", "Bookmark", "Tempo",   "Other"};
    mEntries.clear();
    const Document& document = mEditor.getDocument();
    const std::vector<int> elements = getElements();
    if (elements.empty() || document[elements[0]].kind == Kind::TEMPO) {
        mTitle = "Show";
        mSubtitle = "nothing is selected";
        addTempo();
        return;
    }
    const Element& first = document[elements[0]];
    mTitle = KINDS[size_t(first.kind)];
    if (elements.size() > 1)
        mTitle = std::to_string(elements.size()) + " x " + mTitle;
    mSubtitle = "line " + std::to_string(document.getLine(first.from));
    if (first.parent > 0)
        mSubtitle += ", of " + document[first.parent].name;
    if (const double origin = document.getOrigin(elements[0]); origin != 0)
        mSubtitle += "; counts from " + formatNumber(origin) + " s";
    switch (first.kind) {
    case Kind::SPAN:
        addSpan(elements);
        break;
    case Kind::TRIGGER:
        addTrigger(elements);
        break;
    case Kind::KEY:
        addKey(elements);
        break;
    case Kind::SPLINE:
        addSpline(elements);
        break;
    case Kind::SECTION:
        addText(elements, "Name", "section", {});
        break;
    case Kind::BOOKMARK:
        addText(elements, "Name", "name", {});
        addTime(elements, "Time", "time", [](const Element& e) { return double(e.start); });
        break;
    default:
        break;
    }
}

void Panel::apply(size_t field, const std::string& text) {
    if (field >= mEntries.size())
        return;
    const Entry entry = mEntries[field];
    std::optional<std::string> value = text;
    if (entry.type != Entry::TEXT) {
        const auto typed = parseTime(text, mEditor.getDocument().getTempo());
        value.reset();
        if (typed && (!typed->inBars || entry.type != Entry::NUMBER))
            value =
                formatNumber(typed->seconds -
                             (typed->inBars && entry.type == Entry::TIME ? getShift(getElements()[0]) : 0));
    }
    if ((!value || !applyTo(entry, *value)) && mOnRefused)
        mOnRefused(entry.label + " can't be '" + text + "'");
    mVersion = 0; // show the present value, whether it was taken or not
    update();
}

bool Panel::applyTempo(const Entry& entry, double number) {
    Tempo tempo = mEditor.getDocument().getTempo();
    if (entry.attribute == "bpm" && number >= 1 && number <= 1000)
        tempo.bpm = float(number);
    else if (entry.attribute == "beats" && number >= 1 && number <= 64)
        tempo.beats = int(number);
    else if (entry.attribute == "tempo start")
        tempo.start = float(number);
    else
        return false;
    mEditor.setTempo(tempo);
    return true;
}

// Whether it is a value that the entry can have.
bool Panel::applyTo(const Entry& entry, const std::string& text) {
    const double number = parseNumber(text).value_or(0);
    if (entry.attribute == "bpm" || entry.attribute == "beats" || entry.attribute == "tempo start")
        return applyTempo(entry, number);
    const std::vector<int> elements = getElements();
    if (elements.empty())
        return false;
    if ((entry.attribute == "state" || entry.attribute == "type") &&
        std::find(entry.choices.begin(), entry.choices.end(), text) == entry.choices.end())
        return false;
    const std::string value = entry.type == Entry::TEXT ? text : formatNumber(number);
    if (entry.attribute == "section")
        mEditor.rename(elements[0], text);
    else if (entry.label == "Length")
        mEditor.setLengths(elements, number);
    else if (entry.attribute == "repeat")
        mEditor.set(elements, "repeat", std::to_string(int(std::clamp(number, 0.0, 1e6))));
    else
        mEditor.set(elements, entry.attribute, value);
    return true;
}

// Up and Down in a field, which keeps the keys: times by a hundredth, values too.
void Panel::nudge(size_t field, int step) {
    if (field >= mEntries.size())
        return;
    const Entry entry = mEntries[field];
    const bool whole = entry.attribute == "repeat" || entry.attribute == "beats" || entry.attribute == "bpm";
    const double by = (whole ? 1.0 : 0.01) * step;
    if (const std::optional<double> number = parseNumber(entry.value))
        applyTo(entry, formatNumber(*number + by));
    mVersion = 0;
    update();
    mFields[field]->edit();
}

// Layout and input

Box2 Panel::getRow(size_t entry) const {
    const Box2& all = mArea.world;
    const float y = all.y1 + TOP + ROW * float(entry);
    return Box2(all.x1 + 12, y, all.x2 - 12, y + ROW - 3);
}

Box2 Panel::getChoiceButton(size_t entry) const {
    const Box2 row = getRow(entry);
    return Box2(row.x1 + LABELS + FIELD + 3, row.y1, row.x1 + LABELS + FIELD + 25, row.y2);
}

// One of text that nothing is beside takes all of the row.
Box2 Panel::getFieldBox(size_t entry) const {
    const Box2 row = getRow(entry);
    const bool whole =
        entry < mEntries.size() && mEntries[entry].type == Entry::TEXT && mEntries[entry].choices.empty();
    return Box2(row.x1 + LABELS, row.y1, whole ? row.x2 : row.x1 + LABELS + FIELD, row.y2);
}

int Panel::handleEvent(Event& event) {
    if (event.type == "mousedown") {
        for (panorama::EntryField* field : mFields)
            if (!isInside(field->getAreaWorld(), event.mousePos))
                field->finish();
        for (size_t i = 0; i < mEntries.size(); ++i) {
            if (mEntries[i].choices.empty() || !isInside(getChoiceButton(i), event.mousePos))
                continue;
            std::vector<panorama::MenuItem> items;
            for (const std::string& choice : mEntries[i].choices)
                items.push_back({choice, "", [this, i, choice] { apply(i, choice); }});
            const Box2 button = getChoiceButton(i);
            mOverlay.openMenu(Vector2f(button.x1, button.y2), std::move(items));
            return 1;
        }
    }
    return Control::handleEvent(event);
}

void Panel::draw() {
    panorama::Render* const render = getRender();
    if (!render)
        return;
    Paint paint(*render);
    const Box2& all = mArea.world;
    paint.clip(all);
    paint.box(all, color::panel);
    paint.text(all.x1 + 12, all.y1 + 18, mTitle, color::accent);
    paint.text(all.x1 + 12, all.y1 + 36, paint.fit(mSubtitle, all.getWidth() - 20), color::dim);
    for (size_t i = 0; i < mEntries.size(); ++i) {
        const Box2 row = getRow(i);
        const float middle = (row.y1 + row.y2) / 2;
        paint.text(row.x1, middle, mEntries[i].label, color::ink);
        if (mEntries[i].choices.empty()) {
            const float left = row.x1 + LABELS + FIELD + 6;
            paint.text(left, middle, paint.fit(mEntries[i].hint, row.x2 - left), color::faint);
            continue;
        }
        const Box2 button = getChoiceButton(i);
        paint.box(button, color::raised);
        paint.arrowDown(std::floor((button.x1 + button.x2) / 2), middle - 2, 3, color::ink);
    }
    Control::draw();
}

} // namespace zentrak::studio
