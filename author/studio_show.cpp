#include "studio_show.h"

#include "am_imagemanager.h"
#include "am_videofile.h"
#include "dis_glcheck.h"
#include "dis_key.h"
#include "dis_shader.h"
#include "effect_names.h"
#include "effect_scene.h"
#include "glfw2.h"
#include "o3d_manager.h"
#include "script_loadxml.h"
#include "sparks_engine.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <GL/glew.h>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <sys/stat.h>

namespace zentrak::studio {

namespace {

constexpr double REPLAY_STEP = 1.0 / 60; // seconds
constexpr double REPLAY_SEEN = 1.5;   // the last seconds, which are drawn: they leave traces in the picture
constexpr double REPLAY_SLICE = 0.03; // seconds of work in a frame
constexpr double WAVE_SLICE = 0.003;  // the same, for the wave

script::Effect* makeSpan(const Element& element) {
    auto* const span = new script::Effect;
    span->mName = element.name;
    span->mEnabled = element.enabled;
    span->mStart = element.start;
    span->mEnd = element.end;
    return span;
}

// A curve without keys is left out: the player refuses it, and the window says so.
void addSpline(script::Effect& span, const Document& document, int index) {
    auto spline = std::make_unique<script::Spline>(makeSpline(document, index));
    if (!spline->mKeys.empty())
        span.mSplines.push_back(spline.release());
}

} // namespace

// An effect as the engine sees it. It notes which files the effect reads, and keeps what it throws.
class Show::Slot : public script::Callback {
public:
    std::unique_ptr<kindler::Effect> mEffect; // null: could not be made
    std::set<std::string> mFiles;
    std::string mFailure; // of the running effect: it is left out while there is one
    std::string mRefused; // of one that could not replace it
    std::map<std::string, std::string>
        mBroken; // files that can't be used: while there are any, none replaces it

    Slot(Show& show, const kindler::CatalogueEntry& entry) : mShow(show), mEntry(entry), mName(entry.name) {}

    // Whether a file that has changed can be used. To try the effect itself would cost the running one the
    // state that it shares with its successor.
    void check(const std::string& name) {
        mBroken.erase(name);
        try {
            checkFile(name);
        } catch (const std::exception& exception) {
            const std::string text = exception.what();
            mBroken[name] = text.find(name) == std::string::npos ? name + ": " + text : text;
        }
    }

    // A new effect in place of the old one, which stays where that fails, with the render targets that it has
    // made for others.
    void make() {
        const auto targets = mShow.mCommon.mFbos;
        std::unique_ptr<kindler::Effect> effect = mEntry.make(mShow.mCommon);
        effect->mDisplay = mShow.mKindler.mDisplay;
        effect->mName = mName;
        mRefused.clear();
        record([&] {
            try {
                effect->setup();
            } catch (const std::exception& exception) {
                mRefused = exception.what();
            }
        });
        if (mRefused.empty()) {
            mEffect = std::move(effect);
            mFailure.clear();
        } else {
            effect.reset();
            mShow.mCommon.mFbos = targets;
        }
    }

    void resetTriggers() override {
        guard([&] { mEffect->resetTriggers(); });
    }
    void executeTrigger(float time, const std::string& name, const std::string& value) override {
        guard([&] { mEffect->executeTrigger(time, name, value); });
    }
    void updateSpline(float time, const std::string& name, float value) override {
        guard([&] { mEffect->updateSpline(time, name, value); });
    }
    void update(float time, float delta, float progress) override {
        guard([&] { mEffect->update(time, delta, progress); });
    }
    void postUpdate(float time, float delta, float progress) override {
        guard([&] { mEffect->postUpdate(time, delta, progress); });
    }

private:
    Show& mShow;
    const kindler::CatalogueEntry& mEntry;
    std::string mName;

    void checkFile(const std::string& name) {
        kindler::Kindler& kindler = mShow.mKindler;
        const am::File file = kindler.mArchives.readFile(name);
        if (file.isNull())
            throw Exception("The file is gone");
        if (name.ends_with(".frag"))
            display::FragmentShader(kindler.mDisplay).compile(name.c_str(), "");
        if (name.ends_with(".vert"))
            display::VertexShader(kindler.mDisplay).compile(name.c_str(), "");
        if (name.ends_with(".png") || name.ends_with(".jpg"))
            kindler.mArchives.loadImage(name, -1, true);
        if (name.ends_with(".o3d")) {
            o3d::Manager manager;
            kindler::loadSceneFile(*kindler.mDisplay, manager, name);
            if (manager.mMeshes.empty())
                throw Exception("The scene holds no mesh");
        }
        if (name.ends_with(".xml")) {
            sparks::Engine engine(kindler.mDisplay);
            engine.load(name);
            if (engine.instances.empty())
                throw Exception("The file holds no particles: no 'instance' in a 'spark'");
        }
    }

    template <class Work>
    void record(const Work& work) {
        mShow.mRecord.clear();
        mShow.mKindler.mArchives.setRecorder(&mShow.mRecord);
        work();
        mShow.mKindler.mArchives.setRecorder(nullptr);
        mFiles.insert(mShow.mRecord.begin(), mShow.mRecord.end());
    }

    template <class Work>
    void guard(const Work& work) {
        if (!mEffect || !mFailure.empty())
            return;
        record([&] {
            try {
                work();
            } catch (const std::exception& exception) {
                mFailure = exception.what();
            }
        });
    }
};

Show::Show() = default;

// The effects go while the window is still open; the settings are the player's to write.
Show::~Show() {
    mKindler.mSetupDone = false;
    mSlots.clear();
    mTarget.reset();
}

void Show::setup() {
    mKindler.setup();
    if (!mKindler.mSetupDone || mKindler.mScripts.empty())
        throw Exception("The setup file names no script");
    mOthers.resize(mKindler.mScripts.size());
    edit(mOthers.size() - 1);
}

// Scripts. The engine plays the spans of all of them in the order of the setup file.

void Show::edit(size_t script) {
    mEdited = script;
    setDocument(Document());
    for (size_t i = 0; i < mOthers.size(); ++i)
        loadOther(i);
}

void Show::loadOther(size_t script) {
    Other& other = mOthers[script];
    other.failure.clear();
    script::ScriptEngine loaded;
    try {
        const am::File file = mKindler.mArchives.readFile(mKindler.mScripts[script]);
        if (script != mEdited && file.isNull())
            throw Exception("It is not there");
        if (script != mEdited &&
            !script::LoadXML().loadMem(reinterpret_cast<const char*>(file->data), file->length, loaded))
            throw Exception("The player refuses it");
    } catch (const std::exception& exception) {
        other.failure = exception.what();
        return;
    }
    std::swap(other.spans, loaded.mEffects); // which deletes those of before
    fillEngine();
}

void Show::fillEngine() {
    script::ScriptEngine& engine = mKindler.mScript;
    engine.mEffects.clear();
    for (size_t i = 0; i < mOthers.size(); ++i) {
        const std::vector<script::Effect*>& spans = i == mEdited ? mRoots : mOthers[i].spans;
        engine.mEffects.insert(engine.mEffects.end(), spans.begin(), spans.end());
    }
    engine.init();
}

std::string Show::getScriptFolder() {
    const std::string& script = mKindler.mScripts[mEdited];
    std::vector<std::string> folders = {"."};
    for (const char* name : {"setup.local.xml", "setup.xml"}) {
        am::ArchiveManager here;
        here.addArchive("./");
        const am::File file = here.readFile(name);
        if (file.isNull())
            continue;
        xml::XmlParser parser;
        parser.parse(reinterpret_cast<const char*>(file->data), int(file->length));
        for (xml::Iterator it = parser.createIterator("archive"); ++it;)
            folders.push_back(it->getValue("path"));
        break;
    }
    for (const std::string& folder : folders) {
        struct stat status {};
        if (stat((folder + "/" + script).c_str(), &status) == 0 && S_ISREG(status.st_mode))
            return folder;
    }
    return mKindler.mArchives.readFile(script).isNull() ? "." : "";
}

void Show::open(int width, int height, const std::string& title) {
    delete std::exchange(mKindler.mVideo, nullptr); // a dump is the player's
    mKindler.openDisplay(width, height, false, title);
    mKindler.mDisplayEnabled = true; // for the driver to delete it
    mKindler.openSound(mKindler.mMusicFile.c_str());
    mKindler.mPaused = true;
    mKindler.mMusic.mPaused = true;
    if (hasSound())
        mKindler.mMusic.mStream->setVolume(isMuted() ? 0.0f : 1.0f);
    if (!mKindler.mMusicFile.empty())
        mWave.open(mKindler.mArchives.readFile(mKindler.mMusicFile));
    // The list of names is found by making every effect once, which resets what they share: so before they
    // run.
    kindler::effectNames();
    for (const kindler::CatalogueEntry& entry : kindler::effectCatalogue()) {
        auto slot = std::make_unique<Slot>(*this, entry);
        slot->make();
        mKindler.mScript.addCallback(entry.name, slot.get());
        mSlots[entry.name] = std::move(slot);
    }
    seek(double(mKindler.mStartTime));
}

float Show::getAspect() const {
    return mKindler.mWidth > 0 && mKindler.mHeight > 0 ? float(mKindler.mWidth) / float(mKindler.mHeight)
                                                       : 1.6f;
}

// The document

void Show::setDocument(const Document& document) {
    const std::map<uint32_t, script::Effect*> old = std::move(mSpans);
    const std::vector<script::Effect*> gone = std::move(mRoots);
    mSpans.clear();
    mRoots.clear();
    std::vector<script::Effect*> made(size_t(document.getSize()), nullptr);
    for (int i = 1; i < document.getSize(); ++i) {
        const Element& element = document[i];
        script::Effect* const parent = made[size_t(element.parent)];
        if (element.kind == Kind::TRIGGER)
            parent->mTriggers.push_back(new script::Trigger{0, element.name, element.value, element.start,
                                                            element.repeat, element.delay});
        if (element.kind == Kind::SPLINE)
            addSpline(*parent, document, i);
        if (element.kind != Kind::SPAN)
            continue;
        script::Effect* const span = made[size_t(i)] = makeSpan(element);
        mSpans[element.id] = span;
        (parent ? parent->mChildren : mRoots).push_back(span);
    }
    for (auto& [id, span] : mSpans)
        if (const auto before = old.find(id); before != old.end())
            carryOver(*before->second, *span);
    fillEngine();
    for (script::Effect* span : gone)
        delete span;
    for (auto& [name, slot] : mSlots)
        slot->mFailure.clear(); // it may be mended
}

// What has fired stays fired. A span whose triggers have changed begins again: all that is due comes at once,
// as after a jump.
void Show::carryOver(const script::Effect& old, script::Effect& span) const {
    bool same = old.mName == span.mName && old.mTriggers.size() == span.mTriggers.size();
    for (size_t i = 0; same && i < span.mTriggers.size(); ++i) {
        const script::Trigger &a = *old.mTriggers[i], &b = *span.mTriggers[i];
        same = a.mName == b.mName && a.mValue == b.mValue && a.mStart == b.mStart && a.mRepeat == b.mRepeat &&
               a.mDelay == b.mDelay;
    }
    if (!same || old.mStart != span.mStart)
        return;
    span.mNeedReset = old.mNeedReset;
    for (size_t i = 0; i < span.mTriggers.size(); ++i)
        span.mTriggers[i]->mFired = old.mTriggers[i]->mFired;
}

// All triggers of all spans are due again; of those of one name alone if that is given.
void Show::rewind(const std::string* name) {
    std::vector<script::Effect*> spans = mKindler.mScript.mEffects;
    while (!spans.empty()) {
        script::Effect* const span = spans.back();
        spans.pop_back();
        spans.insert(spans.end(), span->mChildren.begin(), span->mChildren.end());
        if (!name || span->mName == *name)
            span->reverse(0);
    }
}

// Time

double Show::getLength() const {
    return hasSound() && mKindler.mMusic.mRate > 0 ? double(mKindler.mMusic.mLength) / mKindler.mMusic.mRate
           : mWave.getLength() > 0                 ? mWave.getLength()
                                                   : double(mKindler.mScript.mScriptLength);
}

// By the driver's own key: clock and music stop and go on together.
void Show::setPlaying(bool on) {
    if (mReplaying)
        mReplaying->plays = on;
    if (on == isPlaying())
        return;
    if (on && mTime >= getLength())
        seek(0);
    mKindler.getTime();
    display::KeyEvent event;
    event.key = display::KEY_SPACE;
    mKindler.onKeyDown(event);
}

void Show::setMuted(bool on) {
    mKindler.mMuted = on;
    if (hasSound())
        mKindler.mMusic.mStream->setVolume(on ? 0.0f : 1.0f);
}

void Show::seek(double time) {
    const bool plays = isPlaying();
    mReplaying.reset();
    goTo(time);
    if (mTime < getLength())
        setPlaying(plays);
    if (mReplay)
        startReplay();
}

void Show::goTo(double time) {
    mKindler.setTime(float(std::max(0.0, time)));
    mKindler.getTime();
    mTime = double(mKindler.mRawTime);
}

void Show::startReplay() {
    double from = mTime;
    for (const script::Effect* span : mKindler.mScript.mEffects)
        if (span->isActive(float(mTime)))
            from = std::min(from, double(span->mStart));
    if (mTime - from < REPLAY_STEP)
        return;
    const bool plays = isPlaying();
    setPlaying(false);
    rewind(nullptr);
    mReplaying = Replay{std::max(0.0, from), mTime, std::max(0.0, from), glfw2::glfwGetTime(), plays};
    mKindler.mScript.mPreviousTime = float(mReplaying->from);
}

std::optional<double> Show::getProgress() const {
    if (!mReplaying)
        return std::nullopt;
    return (mReplaying->position - mReplaying->from) / (mReplaying->to - mReplaying->from);
}

void Show::playEngine(double time) {
    mKindler.mScript.update(float(time));
}

// A slice of the replay. The display's own time goes along, since some effects follow it, and is set back to
// where it was.
void Show::advanceReplay() {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(REPLAY_SLICE);
    Replay& replay = *mReplaying;
    const double now = glfw2::glfwGetTime();
    const bool discards = display::DisplayGL::hasExtension("GL_VERSION_3_0");
    while (replay.position < replay.to && Clock::now() < end) {
        replay.position = std::min(replay.to, replay.position + REPLAY_STEP);
        glfw2::glfwSetTime(std::max(0.0, replay.base - (replay.to - replay.position)));
        const bool unseen = discards && replay.to - replay.position > REPLAY_SEEN;
        if (unseen)
            GL_CALL(glEnable(GL_RASTERIZER_DISCARD));
        mKindler.mDisplay->resetStates();
        playEngine(replay.position);
        if (unseen)
            GL_CALL(glDisable(GL_RASTERIZER_DISCARD));
    }
    const Replay reached = replay;
    glfw2::glfwSetTime(now);
    mKindler.setTime(float(reached.to));
    mKindler.getTime();
    if (reached.position < reached.to)
        return;
    mReplaying.reset();
    setPlaying(reached.plays);
}

void Show::update() {
    mDecoding = mWave.decode(WAVE_SLICE);
    mKindler.getTime();
    mTime = double(mKindler.mRawTime);
    if (!isPlaying() || mReplaying)
        return;
    const double length = getLength();
    const bool over = hasSound() ? !mKindler.mMusic.mStream->isPlaying() : mTime >= length;
    const bool loops = mLoop && mLoop->second > mLoop->first && mLoop->first < length;
    if (over)
        setPlaying(false);
    if (loops && (over || mTime >= mLoop->second)) {
        seek(mLoop->first);
        setPlaying(true);
    } else if (over) {
        goTo(length);
    }
}

// Drawing

void Show::fitTarget(int width, int height) {
    if (mTarget && mTarget->getWidth() == width && mTarget->getHeight() == height)
        return;
    mTarget = std::make_unique<display::FBO>(mKindler.mDisplay);
    mTarget->setup(width, height, true);
    mPicture = mTarget->attach(display::FBO::COLOR0, display::Texture::CHAN_RGB);
    mTarget->bind();
    GL_CALL(glClearColor(0, 0, 0, 1));
    GL_CALL(glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
    mTarget->unbind();
}

// The picture goes into a target of its own: effects that draw over the frame before do not find the
// interface there. Effects see a window of the size that the setup file gives, so that what they count in
// pixels has the size that it has in the show.
void Show::draw(const mathbase::Box2& box) {
    display::DisplayGL& display = *mKindler.mDisplay;
    fitTarget(std::max(2, int(box.getWidth())), std::max(2, int(box.getHeight())));
    const display::WindowMode window = display.mWindowMode;
    if (mKindler.mWidth > 0 && mKindler.mHeight > 0) {
        display.mWindowMode.width = mKindler.mWidth;
        display.mWindowMode.height = mKindler.mHeight;
    }
    mTarget->bind();
    if (mReplaying) {
        advanceReplay();
    } else {
        const std::vector<script::Effect*>& spans = mKindler.mScript.mEffects;
        if (std::none_of(spans.begin(), spans.end(),
                         [this](const script::Effect* span) { return span->isActive(float(mTime)); })) {
            GL_CALL(glClearColor(0, 0, 0, 1));
            GL_CALL(glClear(GL_COLOR_BUFFER_BIT));
        }
        playEngine(mTime);
    }
    display.resetStates();
    if (!isPlaying())
        comparePicture();
    mTarget->unbind();
    display.mWindowMode.width = window.width;
    display.mWindowMode.height = window.height;
    blit(box);
}

bool Show::isStill() const {
    const std::chrono::duration<double> same = std::chrono::steady_clock::now() - mChanged;
    return same.count() >= STILL && !isPlaying() && !mReplaying && !mDecoding;
}

void Show::comparePicture() {
    const int width = mTarget->getWidth(), height = mTarget->getHeight();
    std::vector<unsigned char> pixels(size_t(width) * size_t(height) * 3);
    GL_CALL(glPixelStorei(GL_PACK_ALIGNMENT, 1));
    GL_CALL(glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels.data()));
    if (pixels != mPixels)
        mChanged = std::chrono::steady_clock::now();
    mPixels.swap(pixels);
}

void Show::blit(const mathbase::Box2& box) {
    display::DisplayGL& display = *mKindler.mDisplay;
    const int height = display.mWindowMode.height;
    mathbase::Matrix4x4Col identity;
    identity.setIdentity();
    display.setProject(identity);
    display.setCamera(identity);
    display.setTransform(identity);
    GL_CALL(glViewport(int(box.x1), height - int(box.y1) - int(box.getHeight()), int(box.getWidth()),
                       int(box.getHeight())));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_BLEND));
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mPicture->bind();
    mBatch.color(1, 1, 1, 1);
    mBatch.rect(-1, -1, 1, 1, 0, 0, 1, 1);
    mBatch.flush();
    mPicture->unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
    GL_CALL(glViewport(0, 0, display.mWindowMode.width, height));
}

// Reload

void Show::reload(const std::vector<std::string>& names) {
    const std::vector<std::string>& scripts = mKindler.mScripts;
    for (size_t i = 0; i < scripts.size(); ++i)
        if (i != mEdited && std::find(names.begin(), names.end(), scripts[i]) != names.end())
            loadOther(i);
    am::ImageManager& images = *mKindler.mArchives.getImageManager();
    for (const std::string& name : names)
        if (!images.getImage(name).isNull())
            images.removeImage(name);
    for (auto& entry : mSlots) {
        Slot& slot = *entry.second;
        bool reads = false;
        for (const std::string& name : names)
            if (slot.mFiles.contains(name)) {
                reads = true;
                slot.check(name);
            }
        if (!reads || !slot.mBroken.empty())
            continue;
        slot.make();
        rewind(&entry.first);
    }
}

std::vector<Show::Failure> Show::getFailures() const {
    std::vector<Failure> failures;
    for (size_t i = 0; i < mOthers.size(); ++i)
        if (i != mEdited && !mOthers[i].failure.empty())
            failures.push_back({mKindler.mScripts[i], mOthers[i].failure});
    for (const auto& [name, slot] : mSlots) {
        for (const auto& [file, text] : slot->mBroken)
            failures.push_back({"effect " + name, text});
        for (const std::string& text : {slot->mRefused, slot->mFailure})
            if (!text.empty())
                failures.push_back({"effect " + name, text});
    }
    return failures;
}

} // namespace zentrak::studio
