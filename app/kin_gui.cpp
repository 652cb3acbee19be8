#include "kin_gui.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "dis_key.h"
#include "kin_gui_effect.h"
#include "kin_gui_row.h"
#include "kin_gui_ruler.h"
#include "pan_controlfactory.h"
#include "pan_label.h"
#include "pan_layoutstack.h"
#include "pan_slider.h"
#include "pan_stat.h"
#include "script_engine.h"
#include "ztk_system.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>

namespace zentrak::kindler {

using mathbase::Box2;
using panorama::Control;

namespace {

constexpr const char* LAYOUT = "layout.xml";
constexpr float SLIDER_ENDS = 36.0f; // pixels of the time slider that its handle takes
const mathbase::Vector4f BACKGROUND(0.15f, 0.16f, 0.19f, 1);
constexpr float FPS_PERIOD = 0.2f; // seconds between two figures of the frame rate

} // namespace

Gui::Gui(display::DisplayGL* window, script::ScriptEngine* engine)
    : Listener(window), mDisplay(window), mPanorama(window), mEngine(engine) {
    mText.reserve(32);
}

void Gui::contextAction(panorama::Context*, std::string) {}

void Gui::setup() {
    panorama::controlFactory.addOnce<Ruler>();
    mPanorama.load(LAYOUT);
    findControls();
    addRows();
    printf("demolength: %f\n", double(mDemoLength));
    mSetup = true;
    mSlider->setCallback(this);
    mMain->setFocus(nullptr); // the row that was added last has it
}

// Before there are rows: a script gives them any name.
void Gui::findControls() {
    Control& root = mPanorama.mWorkspace;
    mMain = root.findControl("main");
    mRows = root.findControl("effects");
    mSlider = dynamic_cast<panorama::Slider*>(root.findControl("timeslider"));
    mStat = dynamic_cast<panorama::Stat*>(root.findControl("fps_stat"));
    mFps = dynamic_cast<panorama::Label*>(root.findControl("fps"));
    mRuler = dynamic_cast<Ruler*>(root.findControl("ruler"));

    std::string missing;
    const auto need = [&missing](const Control* control, const char* what) {
        if (!control)
            missing += (missing.empty() ? "" : ", ") + std::string(what);
    };
    need(mMain, "a control \"main\"");
    need(mRows, "a container \"effects\"");
    need(mSlider, "a slider \"timeslider\"");
    need(mStat, "a stat \"fps_stat\"");
    if (!missing.empty())
        throw Exception("[Gui] The layout '%s' lacks %s", LAYOUT, missing.c_str());
}

void Gui::addRows() {
    for (script::Effect* effect : mEngine->mEffects) {
        Row* const row = new Row;
        row->setArea(Box2(0, 0, Effector::SCALE * mDemoLength + Row::LABEL_WIDTH, Row::SPAN_HEIGHT));
        Row::append(*mRows, row);
        row->loadEffect(effect, 0);
    }
    if (panorama::LayoutStack* const stack = dynamic_cast<panorama::LayoutStack*>(mRows))
        stack->recalculate();
    // As high as the rows are, so that its container can scroll them.
    Box2 area = mRows->getChildArea();
    for (unsigned int i = 0; i < mRows->getControlSize(); ++i)
        area.y2 = std::max(area.y2, mRows->getControl(i)->getArea().y2);
    mRows->setArea(area);
    mFitsSlider = mSlider->mMin == 0 && mSlider->mMax == 1; // a slider's own
    if (mRuler) {
        mRuler->mEngine = mEngine;
        mRuler->mRows = mRows;
    }
}

// The slider counts the pixels that its handle can go; a resize of the window keeps the part of the axis that
// is shown.
void Gui::fitSlider() {
    if (mFitsSlider)
        mSlider->mMax = getSliderTravel();
}

float Gui::getSliderTravel() const {
    return std::max(1.0f, mSlider->getArea().getWidth() - SLIDER_ENDS);
}

void Gui::controlAction(Control* control, panorama::Action) {
    if (control != mSlider)
        return;
    fitSlider();
    mScroll = std::trunc(mSlider->getValue()) / getSliderTravel();
    const float scroll = mScroll * mDemoLength * Effector::SCALE;
    for (unsigned int i = 0; i < mRows->getControlSize(); ++i)
        if (Row* const row = dynamic_cast<Row*>(mRows->getControl(i)))
            row->setScrollPos(scroll);
    if (mRuler)
        mRuler->mScrollPos = scroll;
}

int Gui::onKeyDown(const display::KeyEvent& event) {
    if (event.key == display::KEY_TAB && mMain) {
        mMain->resetContext(); // no menu stays open over the show
        mMain->setVisible(!mMain->getVisible());
    }
    return WHATEVER;
}

void Gui::onDraw() {
    assert(mSetup);
    const float now = float(mDisplay->getTime());
    ++mFpsFrames;
    fitSlider();
    placeGround();
    const float elapsed = now - mFpsTime;
    if (elapsed > FPS_PERIOD)
        showFrameRate(std::max(0.0f, float(mFpsFrames) / elapsed));
    if (elapsed > FPS_PERIOD || elapsed < 0) { // or the clock was set back
        mFpsFrames = 0;
        mFpsTime = now;
    }
}

// Below the controls: all but the picture's quarter, which the show draws itself.
void Gui::placeGround() {
    mPanorama.mGround.clear();
    if (!mMain->getVisible())
        return;
    const float width = float(mDisplay->mWindowMode.width);
    const float height = float(mDisplay->mWindowMode.height);
    const float left = width - float(mDisplay->mWindowMode.width >> 1); // of the picture
    const float bottom = height - float(mDisplay->mWindowMode.height >> 1);
    mPanorama.mGround.push_back({Box2(0, 0, left, bottom), BACKGROUND});
    mPanorama.mGround.push_back({Box2(0, bottom, width, height), BACKGROUND});
}

void Gui::showFrameRate(float fps) {
    mStat->addValue(fps);
    if (!mFps)
        return;
    char text[32];
    snprintf(text, sizeof text, "%.2f", double(fps));
    mText = text;
    mFps->setText(mText);
}

} // namespace zentrak::kindler
