// The show that an author works on: the driver, its effects and the script engine, played from a document.
#pragma once

#include "dis_batch.h"
#include "dis_fbo.h"
#include "kin_effect.h"
#include "kin_main.h"
#include "studio_document.h"
#include "studio_wave.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zentrak::studio {

// All belongs to the main thread. An effect that throws is left out until something changes.
class Show {
public:
    static constexpr double STILL = 2; // seconds with the same picture, for particles that are due

    // Something that does not work, for the author to mend.
    struct Failure {
        std::string where; // an effect or a file
        std::string text;
        bool operator==(const Failure&) const = default;
    };

    Show();
    ~Show();
    Show(const Show&) = delete;
    Show& operator=(const Show&) = delete;

    // Reads the setup file of the current folder, as the player does, but none of its scripts. Throws what
    // that throws, and Exception if it names no script.
    void setup();
    // The scripts that the setup file names, in the order in which they are played.
    const std::vector<std::string>& getScripts() const { return mKindler.mScripts; }
    // Chooses the one that the document is; the others are played as they are on disk. The last one at first.
    void edit(size_t script);
    size_t getEdited() const { return mEdited; }
    // The first folder that has the edited script; the current one if it is nowhere, and empty if it is in a
    // zip file.
    std::string getScriptFolder();

    // Opens the window, the sound and all effects. The show is paused at its start time.
    void open(int width, int height, const std::string& title);
    display::DisplayGL& getDisplay() { return *mKindler.mDisplay; }
    float getAspect() const; // of the picture, width by height

    // Makes the engine play `document` from the next frame on, at the same moment. Triggers that have fired
    // stay so, unless they have changed.
    void setDocument(const Document& document);

    // Time, in seconds of the show.
    double getTime() const { return mTime; }
    double getLength() const; // of the music, or without any of the script
    bool isPlaying() const { return mReplaying ? mReplaying->plays : !mKindler.mPaused; }
    void setPlaying(bool on);
    void seek(double time); // sound and all
    bool isMuted() const { return mKindler.mMuted; }
    void setMuted(bool on);
    void setLoop(std::optional<std::pair<double, double>> loop) { mLoop = loop; }
    const std::optional<std::pair<double, double>>& getLoop() const { return mLoop; }

    // With it on, each seek replays the spans that cover the new time from their beginning, unseen, so that
    // effects that gather state show what playing up to there would show.
    bool isReplaying() const { return mReplay; }
    void setReplaying(bool on) { mReplay = on; }
    // How far a replay that goes on has come, 0 to 1.
    std::optional<double> getProgress() const;

    // Before a frame is drawn: time goes on, the wave is decoded.
    void update();
    // Draws the picture into a box of the window, pixels from its upper left corner.
    void draw(const mathbase::Box2& box);
    // The last frames had the same picture, and with no change from outside the next one will too. Some
    // effects move on while the show is paused.
    bool isStill() const;

    // Reloads all effects and scripts that have read one of these files. One that fails stays as it was, and
    // is reported as a failure until it is mended.
    void reload(const std::vector<std::string>& names);
    std::vector<Failure> getFailures() const;

    const Wave& getWave() const { return mWave; }

private:
    class Slot;
    struct Replay {
        double from, to, position, base;
        bool plays; // the show, when it is done
    };
    // The driver, which leaves its scripts to the show.
    class Driver : public kindler::Kindler {
    public:
        std::vector<std::string> mScripts;

    protected:
        void loadScript(const std::string& name) override { mScripts.push_back(name); }
    };
    // A script that is not edited. The engine owns its spans.
    struct Other {
        std::vector<script::Effect*> spans;
        std::string failure; // not empty: the spans are those that were loaded before
    };

    Driver mKindler; // first: the window has to outlive what is drawn in it
    kindler::Common mCommon;
    std::map<std::string, std::unique_ptr<Slot>> mSlots;
    std::vector<std::string> mRecord;
    std::map<uint32_t, script::Effect*> mSpans; // of the document, by element; the engine owns them
    std::vector<script::Effect*> mRoots;        // the outermost ones
    std::vector<Other> mOthers;                 // by the index of the script
    size_t mEdited = 0;
    std::unique_ptr<display::FBO> mTarget;
    display::Texture* mPicture = nullptr; // mTarget's
    display::Batch mBatch;
    Wave mWave;
    bool mDecoding = true;                          // the wave
    std::vector<unsigned char> mPixels;             // of the last picture, while the show is paused
    std::chrono::steady_clock::time_point mChanged; // the picture, last
    double mTime = 0;
    std::optional<std::pair<double, double>> mLoop;
    bool mReplay = false;
    std::optional<Replay> mReplaying;

    bool hasSound() const { return !mKindler.mNoSound && mKindler.mMusic.mStream; }
    void goTo(double time);
    void startReplay();
    void advanceReplay();
    void playEngine(double time);
    void fitTarget(int width, int height);
    void comparePicture();
    void blit(const mathbase::Box2& box);
    void loadOther(size_t script);
    void fillEngine();
    void carryOver(const script::Effect& old, script::Effect& span) const;
    void rewind(const std::string* name);
};

} // namespace zentrak::studio
