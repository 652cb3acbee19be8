// The particle engine: holds the live particles, steps them and draws them as sprites that face the camera.
#pragma once

#include "dis_batch.h"
#include "dis_display.h"
#include "dis_spritecut.h"
#include "dis_texture.h"
#include "mb_matrix4x4col.h"
#include "mb_random.h"
#include "sparks_emitterinstance.h"
#include "sparks_spark.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::sparks {

// An effect loads a file, takes a copy of one of its instances, gives that this engine and puts it into
// `active`. Each frame it sets projection and camera, and calls update and draw. What is loaded and drawn
// comes through the display; the context has to be there from the first draw on.
class Engine {
public:
    static constexpr int MAX_ALLOCATED =
        1000000; // particles at a time; more are dropped, said once in the log

    mathbase::Random random;
    display::DisplayGL* display;             // not owned; with null nothing is loaded, and the time is 0
    std::vector<EmitterInstance*> instances; // all that were loaded; owned by the engine, as load made them
    std::vector<EmitterInstance*> active;    // those that run; not owned
    float lastTime = -1.0f;                  // of the last update; below 0 there was none
    float dt = 0;                            // seconds, of the last update
    bool isSetup = false;
    display::Texture texture; // a strip of eight square cells
    Spark* live = nullptr;    // newest first
    Spark* free = nullptr;
    int allocated = 0; // particles ever made: the peak of those alive

    explicit Engine(display::DisplayGL* owner);
    // Prints how many particles were in use.
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // Adds the instances of a file; ".xml" is added to a name that lacks it. A file that is missing or has
    // another root is passed over. Throws std::out_of_range for a name of less than four characters, and what
    // the XML parser throws.
    void load(std::string name);

    // Writes all instances, to the first archive; false if that failed.
    bool save(std::string name) const;

    // The first loaded instance of this name, still owned here. Null, and a line in the log, if there is
    // none.
    EmitterInstance* getInstance(const std::string& name) const;

    void setup(); // names the texture, which is made at the first draw; done by update and draw as needed

    // Emits, moves and removes particles; `time` in seconds. The first call sets the clock.
    void update(float time);

    // Draws additively. `cameraInverse` is the transform of the camera into the world; asserts "length!=0" of
    // its right and up. Leaves GL_BLEND, GL_POINT_SMOOTH and the blend function set, and the depth state
    // as it was.
    void draw(const mathbase::Matrix4x4Col* cameraInverse);

    void clear() { active.clear(); } // emits no more; living particles fly on

    void addSpark(const Spark& spark); // copied

    // A particle off the free list, or a new zeroed one; owned by the engine. Null at MAX_ALLOCATED.
    Spark* getFreeElement();

    // Logs, once, that `who` dropped particles beyond `limit`.
    void reportLimit(const std::string& who, int limit);

private:
    static constexpr int BLOCK = 1024; // particles

    float now() const;

    std::vector<std::unique_ptr<EmitterInstance>> mLoaded;
    std::vector<std::unique_ptr<Spark[]>> mBlocks; // all particles, live and free
    display::Batch mBatch;
    display::SpriteCut mCut;
    bool mCutRead = false;
    bool mLimitReported = false;
};

} // namespace zentrak::sparks
