#include "pan_dropdown.h"

#include "dis_key.h"
#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using namespace display; // the keys
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float MARGIN = 5.0f;      // pixels left of the text, as in the list
constexpr float ARROW_ROOM = 20.0f; // pixels at the right
constexpr int PAGE = 10;            // rows

} // namespace

// The menu that it opens, with the keys that a menu does not have.
class Dropdown::List : public Context {
public:
    explicit List(Dropdown& owner) : mOwner(owner) {
        setPair(mBack.color, Vector4f(0.05f, 0.05f, 0.07f, 0.97f));
        setPair(mBack.border, edge);
        setPair(mBack.highlight, accent);
        setPair(mText.color, ink, NO_COLOR);
        setPair(mText.highlight, white, bright); // the row under the mouse, and the current one
    }

    void addLine(const std::string& text) {
        mLines.emplace_back();
        mLines.back().set(text);
    }
    void deleteOptions() override {
        mLines.clear();
        Context::deleteOptions();
    }
    void openAt(const Box2& box, const Box2& window);
    int handleEvent(Event& event) override;
    void draw() override;

    bool mOpening = false; // the press that opened it has not been released

private:
    int count() const { return int(mControls.size()); }
    float getPitch() const { return mRowGap + ROW_HEIGHT; }
    void snap(Event& event) const;
    void drawRow(Render& render, int row);
    void highlight(int row);
    void showRow(int row);
    void scrollTo(float top);

    Dropdown& mOwner;
    Box2 mWindow;
    std::vector<TextLine> mLines;
};

void Dropdown::List::openAt(const Box2& box, const Box2& window) {
    mWindow = window;
    setFixedWidth(box.getWidth());
    setPosition(Vector2f(box.x1, box.y2));
    mOwner.setContext(this); // which gives it its size
    const float height = mArea.area.getHeight();
    const bool upwards = box.y2 + height > window.y2 && box.y1 - window.y1 > window.y2 - box.y2;
    setPosition(Vector2f(box.x1, upwards ? box.y1 - height : box.y2));
    if (mArea.area.y1 < window.y1 || mArea.area.y2 > window.y2)
        showRow(mOwner.getSelected());
}

// Where the list does not fit into the window it can be moved, as far as its ends.
void Dropdown::List::scrollTo(float top) {
    const Box2 area = mArea.area;
    if (area.y1 >= mWindow.y1 && area.y2 <= mWindow.y2)
        return;
    const float lowest = std::min(mWindow.y1, mWindow.y2 - area.getHeight());
    setPosition(Vector2f(area.x1, toPixel(std::clamp(top, lowest, std::max(lowest, mWindow.y1)))));
}

void Dropdown::List::showRow(int row) {
    const float from = mMargin + getPitch() * float(row);
    const float top = mArea.area.y1;
    if (top + from - mMargin < mWindow.y1)
        scrollTo(mWindow.y1 + mMargin - from);
    else if (top + from + ROW_HEIGHT + mMargin > mWindow.y2)
        scrollTo(mWindow.y2 - from - ROW_HEIGHT - mMargin);
}

void Dropdown::List::highlight(int row) {
    mHighlight = std::clamp(row, 0, count() - 1);
    showRow(mHighlight);
}

int Dropdown::List::handleEvent(Event& event) {
    if (event.type == "mousewheel") {
        scrollTo(mArea.area.y1 + event.wheelDelta * 3 * getPitch());
        mHighlight = -1;
        return 0;
    }
    if (event.type == "mouseup" && event.button == 0 && mOpening) {
        mOpening = false;
        // The release of the press that opened it, on no row: reopened, it stays open however the mouse
        // moved.
        if (mHighlight == -1) {
            mOwner.setContext(this);
            return 0;
        }
    }
    if (event.type != "keydown" || !count()) {
        Event nearest(event);
        snap(nearest);
        return Context::handleEvent(nearest);
    }

    const int from = mHighlight != -1 ? mHighlight : mOwner.getSelected();
    switch (event.key) {
    case KEY_UP:
        highlight(from - 1);
        break;
    case KEY_DOWN:
        highlight(from + 1);
        break;
    case KEY_PAGEUP:
        highlight(from - PAGE);
        break;
    case KEY_PAGEDOWN:
        highlight(from + PAGE);
        break;
    case KEY_HOME:
        highlight(0);
        break;
    case KEY_END:
        highlight(count() - 1);
        break;
    case KEY_ESC:
    case KEY_TAB:
        mOwner.resetContext();
        break;
    case KEY_ENTER:
    case KEY_KP_ENTER:
    case KEY_SPACE:
        mOwner.resetContext();
        mOwner.choose(from); // its receiver may delete the owner and this
        break;
    default:
        return 0;
    }
    return 1;
}

void Dropdown::List::draw() {
    Render* const render = getRender();
    if (!mOwner.isShown()) {
        mOwner.resetContext();
        return;
    }
    if (!render)
        return;
    fill(*render, mArea.area, mBack.color);
    outline(*render, mArea.area, mBack.border);
    const float top = mArea.area.y1 + mMargin, rows = float(count());
    const int first = int(std::clamp(std::floor((mWindow.y1 - top) / getPitch()), 0.0f, rows));
    const int last = int(std::clamp(std::ceil((mWindow.y2 - top) / getPitch()), 0.0f, rows));
    for (int row = first; row < last; ++row)
        drawRow(*render, row);
}

// The bar fills the row and the gaps around it, so that it is also below descenders.
void Dropdown::List::drawRow(Render& render, int row) {
    const Box2& area = mArea.area;
    const float top = area.y1 + mMargin + getPitch() * float(row);
    if (row == mHighlight)
        fill(
            render,
            toPixels(Box2(area.x1 + 1, top - mRowGap * 0.5f, area.x2 - 1, top + ROW_HEIGHT + mRowGap * 0.5f)),
            mBack.highlight);
    const bool current = row == mOwner.getSelected();
    render.setColor(row == mHighlight ? mText.highlight.first
                    : current         ? mText.highlight.second
                                      : mText.color.first,
                    NO_COLOR);
    mLines[size_t(row)].draw(render, Box2(area.x1 + MARGIN, top, area.x2 - MARGIN, top + ROW_HEIGHT),
                             TextLine::START, TextLine::MIDDLE);
}

// A gap belongs to the nearer row.
void Dropdown::List::snap(Event& event) const {
    const Box2& area = mArea.area;
    const float row = std::floor((event.mousePos.y - area.y1 - mMargin + mRowGap * 0.5f) / getPitch());
    if (isInside(area, event.mousePos) && row >= 0 && row < float(count()))
        event.mousePos.y = area.y1 + mMargin + getPitch() * row + ROW_HEIGHT * 0.5f;
}

Dropdown::Dropdown() : InputControl(true), mList(new List(*this)) {
    mType = "dropdown";
    setRaisedLook(mBack);
    setTextLook(mText);
    setPair(mCaption.color, bright); // the outline of the one that has the keys
}

Dropdown::~Dropdown() = default;

Control* Dropdown::clone() {
    return new Dropdown;
}

Context* Dropdown::getList() const {
    return mList.get();
}

void Dropdown::load(xml::IteratorConst& it) {
    Control::load(it);
    xml::IteratorConst option = it.createIterator("option");
    for (bool first = true; ++option; first = false) {
        if (first)
            deleteOptions();
        addOption(option->getValue("id"), option->getValue("name"));
        if (option->getValue("default") == "true")
            setSelected(getOptionCount() - 1);
    }
}

void Dropdown::addOption(const std::string& id, const std::string& name) {
    mOptions.push_back({id, name.empty() ? id : name});
    mList->addOption(mOptions.back().name, id);
    mList->addLine(mOptions.back().name);
    if (mSelected == -1)
        setSelected(0);
}

void Dropdown::deleteOptions() {
    mOptions.clear();
    mList->deleteOptions();
    mSelected = -1;
}

void Dropdown::setSelected(int index) {
    if (index < 0 || index >= getOptionCount())
        return;
    mSelected = index;
    mList->mSelected = mOptions[size_t(index)].name;
}

std::string Dropdown::getSelectedId() const {
    return mSelected == -1 ? std::string() : mOptions[size_t(mSelected)].id;
}

std::string Dropdown::getSelectedName() const {
    return mSelected == -1 ? std::string() : mOptions[size_t(mSelected)].name;
}

void Dropdown::choose(int index) {
    if (index < 0 || index >= getOptionCount() || index == mSelected)
        return;
    setSelected(index);
    sendAction(ACTION_CHANGE, nullptr);
}

void Dropdown::open() {
    Control* root = getRoot();
    if (mOptions.empty() || !root)
        return;
    mList->openAt(toPixels(mArea.world), root->getArea());
}

int Dropdown::handleKey(const Event& event) {
    if (!hasKeys())
        return 0;
    switch (event.key) {
    case KEY_UP:
        choose(std::max(0, mSelected - 1));
        return 1;
    case KEY_DOWN:
        choose(mSelected + 1);
        return 1;
    case KEY_HOME:
        choose(0);
        return 1;
    case KEY_END:
        choose(getOptionCount() - 1);
        return 1;
    case KEY_SPACE:
    case KEY_ENTER:
    case KEY_KP_ENTER:
        open();
        return 1;
    default:
        return 0;
    }
}

int Dropdown::handleEvent(Event& event) {
    // A row of the list: the mouse position distinguishes two of the same name.
    if (event.type == "context") {
        choose(mList->mHighlight);
        return 1;
    }
    int result = 0;
    if (!hears(event, result))
        return result;
    if (startsPress(event)) {
        endPress(); // the list gets the release
        open();
        mList->mOpening = true;
        return 1;
    }
    if (event.type == "keydown")
        return std::max(result, handleKey(event));
    return result;
}

void Dropdown::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const bool keys = hasKeys();
    const Box2 box = toPixels(mArea.world);
    fill(*render, box, pick(mBack, mInactive, false, mHover));
    outline(*render, box, keys ? mCaption.color : mBack.border);
    render->setColor(pick(mText, mInactive, false, mHover).first, NO_COLOR);
    mLine.set(mSelected == -1 ? xml::emptyString : mOptions[size_t(mSelected)].name);
    mLine.draw(*render, Box2(box.x1 + MARGIN, box.y1, box.x2 - ARROW_ROOM, box.y2), TextLine::START,
               TextLine::MIDDLE);
    drawArrow(*render, Vector2f(box.x2 - ARROW_ROOM * 0.5f, (box.y1 + box.y2) * 0.5f), Arrow::DOWN);
    Control::draw();
}

} // namespace zentrak::panorama
