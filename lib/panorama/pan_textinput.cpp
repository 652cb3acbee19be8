#include "pan_textinput.h"

#include "dis_key.h"
#include "pan_look.h"

#include <cctype>

namespace zentrak::panorama {

using namespace look;
using namespace display; // the keys
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float MARGIN = 4.0f; // pixels left and right of the text
constexpr float BLINK = 0.53f; // seconds that the caret is on, and then off
constexpr char STAR = '*';

std::string clipboard;

// Latin-1 characters that keys type.
bool isPrintable(int character) {
    return (character >= 32 && character <= 126) || (character >= 160 && character <= 255);
}

std::string printableOf(const std::string& text) {
    std::string result;
    for (const char c : text)
        if (isPrintable(static_cast<unsigned char>(c)))
            result += c;
    return result;
}

// Blanks, letters and digits, and the rest: a word is a run of one class.
int sortOf(char character) {
    const unsigned char c = static_cast<unsigned char>(character);
    if (c == ' ' || c == 0xA0)
        return 0;
    const bool letter = c >= 0xC0 && c != 0xD7 && c != 0xF7;
    const bool plain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    return letter || plain ? 1 : 2;
}

// Whether it is the start of a number: "-", "1.", "1e-" and so on, or empty.
bool beginsNumber(const std::string& text) {
    size_t i = 0;
    const auto sign = [&] { i += i < text.size() && (text[i] == '-' || text[i] == '+'); };
    const auto digits = [&] {
        const size_t from = i;
        while (i < text.size() && text[i] >= '0' && text[i] <= '9')
            ++i;
        return i > from;
    };
    sign();
    bool any = digits();
    if (i < text.size() && text[i] == '.') {
        ++i;
        any |= digits();
    }
    if (any && i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        sign();
        digits();
    }
    return i == text.size();
}

} // namespace

TextInput::TextInput() : InputControl(true) {
    mType = "textinput";
    setSunkLook(mBack);
    setPair(mBack.pushed, bright); // the outline of the field that has the keys
    setTextLook(mText);
    setPair(mCaption.color, white);                                  // the caret
    setPair(mCaption.highlight, accent);                             // what is selected
    setPair(mCaption.inactive, Vector4f(0.25f, 0.25f, 0.29f, 1.0f)); // the same in a field without the keys
}

Control* TextInput::clone() {
    return new TextInput;
}

void TextInput::load(xml::IteratorConst& it) {
    Control::load(it);
    const std::string& type = it->getValue("type");
    if (!type.empty())
        setKind(type == "numeric" ? NUMERIC : type == "password" ? PASSWORD : TEXT);
    if (!it->getValue("text").empty())
        setText(it->getValue("text"));
    if (!it->getValue("inactive").empty())
        setInactive(it->getValue("inactive") == "true");
}

void TextInput::setText(const std::string& text) {
    mValue = printableOf(text.substr(0, LONGEST));
    mCaret = mAnchor = mValue.size();
    mEdges.clear();
    mCaretMoved = true;
}

float TextInput::getValue() const {
    return float(toNumber(mValue));
}

void TextInput::setKind(Kind kind) {
    mKind = kind;
    mEdges.clear();
    mCaretMoved = true;
}

void TextInput::select(size_t anchor, size_t caret) {
    mAnchor = std::min(anchor, mValue.size());
    mCaret = std::min(caret, mValue.size());
    mCaretMoved = true;
}

std::string TextInput::getSelection() const {
    return mValue.substr(std::min(mAnchor, mCaret), std::max(mAnchor, mCaret) - std::min(mAnchor, mCaret));
}

const std::string& TextInput::getClipboard() {
    return clipboard;
}

void TextInput::setClipboard(const std::string& text) {
    clipboard = text;
}

Box2 TextInput::getInside() const {
    const Box2 box = toPixels(mArea.world);
    return Box2(box.x1 + MARGIN, box.y1 + 1, box.x2 - MARGIN, box.y2 - 1);
}

void TextInput::measure() {
    if (!mEdges.empty())
        return;
    Render* render = getRender();
    mEdges.reserve(mValue.size() + 1);
    double x = 0;
    mEdges.push_back(x);
    for (const char c : mValue) {
        x += render ? double(render->getAdvance(static_cast<unsigned char>(mKind == PASSWORD ? STAR : c)))
                    : 0.0;
        mEdges.push_back(x);
    }
}

double TextInput::edge(size_t position) {
    measure();
    return mEdges[position];
}

// The nearest position between two characters.
size_t TextInput::positionAt(float x) {
    measure();
    const double at = double(x) - double(getInside().x1) + mScroll;
    const auto behind = std::upper_bound(mEdges.begin(), mEdges.end(), at);
    if (behind == mEdges.begin())
        return 0;
    if (behind == mEdges.end())
        return mValue.size();
    const size_t next = size_t(behind - mEdges.begin());
    return at - mEdges[next - 1] < mEdges[next] - at ? next - 1 : next;
}

size_t TextInput::wordBefore(size_t position) const {
    if (mKind == PASSWORD)
        return 0;
    while (position > 0 && sortOf(mValue[position - 1]) == 0)
        --position;
    if (position > 0)
        for (const int sort = sortOf(mValue[position - 1]);
             position > 0 && sortOf(mValue[position - 1]) == sort;)
            --position;
    return position;
}

size_t TextInput::wordBehind(size_t position) const {
    const size_t end = mValue.size();
    if (mKind == PASSWORD)
        return end;
    if (position < end)
        for (const int sort = sortOf(mValue[position]); position < end && sortOf(mValue[position]) == sort;)
            ++position;
    while (position < end && sortOf(mValue[position]) == 0)
        ++position;
    return position;
}

// Selects the run of characters of one class around a position, with the anchor at its start.
void TextInput::selectWord(size_t position) {
    const size_t end = mValue.size();
    if (mKind == PASSWORD || !end) {
        select(0, end);
        return;
    }
    size_t from = std::min(position, end - 1), to = from;
    const int sort = sortOf(mValue[from]);
    while (from > 0 && sortOf(mValue[from - 1]) == sort)
        --from;
    while (to < end && sortOf(mValue[to]) == sort)
        ++to;
    select(from, to);
}

void TextInput::moveCaret(size_t position, bool extend) {
    select(extend ? mAnchor : position, position);
    if (Render* render = getRender())
        mCaretTime = render->getTime();
}

bool TextInput::replaceSelection(const std::string& text) {
    const size_t from = std::min(mAnchor, mCaret), to = std::max(mAnchor, mCaret);
    std::string added = printableOf(text);
    if (mKind == NUMERIC)
        std::replace(added.begin(), added.end(), ',', '.');
    added.resize(std::min(added.size(), LONGEST - (mValue.size() - (to - from))));
    if (from == to && added.empty())
        return false;
    std::string value = mValue.substr(0, from) + added + mValue.substr(to);
    // Deleting is always allowed; otherwise a text that was set and isn't a number could not be corrected.
    if (mKind == NUMERIC && !added.empty() && !beginsNumber(value))
        return false;
    mValue.swap(value);
    mEdges.clear();
    moveCaret(from + added.size(), false);
    return true;
}

bool TextInput::deleteTo(size_t position) {
    if (mAnchor == mCaret)
        mAnchor = position;
    return replaceSelection(std::string());
}

void TextInput::leaveKeys() {
    select(mCaret, mCaret);
    InputControl::leaveKeys();
}

void TextInput::changed() {
    sendAction(ACTION_CHANGE, nullptr);
}

// The keys that edit the text or use the clipboard. Returns whether it was one.
bool TextInput::handleEdit(const Event& event, bool& changed) {
    const bool ctrl = event.ctrl();
    switch (event.key) {
    case KEY_BACKSPACE:
        changed = deleteTo(ctrl ? wordBefore(mCaret) : mCaret - (mCaret > 0));
        return true;
    case KEY_DEL:
    case KEY_DELETE:
        changed = deleteTo(ctrl ? wordBehind(mCaret) : mCaret + (mCaret < mValue.size()));
        return true;
    case KEY_a:
        if (ctrl)
            select(0, mValue.size());
        return ctrl;
    case KEY_c:
    case KEY_x:
        if (ctrl && mKind != PASSWORD && mAnchor != mCaret) {
            clipboard = getSelection();
            if (event.key == KEY_x)
                changed = replaceSelection(std::string());
        }
        return ctrl;
    case KEY_v:
        if (ctrl)
            changed = replaceSelection(clipboard);
        return ctrl;
    default:
        return false;
    }
}

int TextInput::handleKey(const Event& event) {
    if (!hasKeys())
        return 0;
    if (event.type == "keychardown") {
        if (!isPrintable(event.character) || (event.ctrl() && !event.alt()))
            return 0;
        if (replaceSelection(std::string(1, char(event.character))))
            changed();
        return 1;
    }
    bool edited = false;
    if (handleEdit(event, edited)) {
        if (edited)
            changed();
        return 1;
    }
    const size_t low = std::min(mAnchor, mCaret), high = std::max(mAnchor, mCaret);
    const bool extend = event.shift(), ctrl = event.ctrl(), selected = low != high;
    switch (event.key) {
    case KEY_LEFT:
        moveCaret(ctrl ? wordBefore(mCaret) : selected && !extend ? low : mCaret - (mCaret > 0), extend);
        return 1;
    case KEY_RIGHT:
        moveCaret(ctrl                  ? wordBehind(mCaret)
                  : selected && !extend ? high
                                        : mCaret + (mCaret < mValue.size()),
                  extend);
        return 1;
    case KEY_HOME:
    case KEY_UP:
        moveCaret(0, extend);
        return 1;
    case KEY_END:
    case KEY_DOWN:
        moveCaret(mValue.size(), extend);
        return 1;
    case KEY_ENTER:
    case KEY_KP_ENTER:
        leaveKeys();
        return 1;
    default: // typing arrives again as a character
        return isPrintable(event.key) && !ctrl ? 1 : 0;
    }
}

int TextInput::handleEvent(Event& event) {
    int result = 0;
    if (!hears(event, result))
        return result;
    if (startsPress(event)) {
        const size_t position = positionAt(event.mousePos.x);
        mByWords = event.doubleClick;
        if (mByWords)
            selectWord(position);
        else
            moveCaret(position, event.shift());
        return 1;
    }
    if (event.type == "mouseup" && event.button == 0 && isHeld()) {
        endPress();
        return 1;
    }
    if (event.type == "mousemove" && isHeld()) {
        if (!mByWords)
            moveCaret(positionAt(event.mousePos.x), true);
        return 1;
    }
    if (event.type == "keydown" || event.type == "keychardown")
        return std::max(result, handleKey(event));
    return result;
}

// Scrolls as little as possible, and leaves no gap after the text while some of it is hidden on the left.
void TextInput::showCaret() {
    const double width = std::max(1.0, double(getInside().getWidth()) - 1); // and the caret's own pixel
    const double caret = edge(mCaret);
    if (mCaretMoved) {
        mScroll = std::max(mScroll, caret - width);
        mScroll = std::min(mScroll, caret);
        mCaretMoved = false;
    }
    mScroll = std::floor(std::clamp(mScroll, 0.0, std::max(0.0, std::ceil(mEdges.back() - width))));
}

void TextInput::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const bool keys = hasKeys();
    const Box2 box = toPixels(mArea.world);
    fill(*render, box, pick(mBack, mInactive, false, mHover && !keys));
    outline(*render, box, keys ? mBack.pushed : mBack.border);

    const Box2 inside = getInside();
    showCaret();
    const auto place = [&](size_t position) {
        return toPixel(float(double(inside.x1) + edge(position) - mScroll));
    };
    const float middle = toPixel((inside.y1 + inside.y2) * 0.5f),
                half = std::min(8.0f, inside.getHeight() * 0.5f - 1);
    clipTo(*render, inside, mArea.clip);
    if (mAnchor != mCaret) {
        const size_t low = std::min(mAnchor, mCaret), high = std::max(mAnchor, mCaret);
        fill(*render, cut(Box2(place(low), middle - half, place(high), middle + half), inside),
             keys ? mCaption.highlight : mCaption.inactive);
    }

    // The characters that are at least partly visible.
    const double width = std::max(0.0, double(inside.getWidth()));
    const size_t first = size_t(
        std::max<ptrdiff_t>(0, std::upper_bound(mEdges.begin(), mEdges.end(), mScroll) - mEdges.begin() - 1));
    const size_t last =
        std::min(size_t(std::lower_bound(mEdges.begin(), mEdges.end(), mScroll + width) - mEdges.begin()),
                 mValue.size());
    if (first < last) {
        if (mKind == PASSWORD)
            mShown.assign(last - first, STAR);
        else
            mShown.assign(mValue, first, last - first);
        render->setColor(pick(mText, mInactive, keys, mHover).first, NO_COLOR);
        render->setFontMode(0);
        render->drawText(mShown, Vector2f(place(first), middle));
    }

    if (keys && std::fmod(render->getTime() - mCaretTime, 2 * BLINK) < BLINK) {
        const float x = place(mCaret);
        fill(*render, Box2(x, middle - half, x + 1, middle + half), mCaption.color);
    }
    render->setClipArea(mArea.clip);
    Control::draw();
}

} // namespace zentrak::panorama
