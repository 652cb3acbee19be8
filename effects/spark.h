// A sun of particles, left backwards from its centre.
#pragma once

#include "effect_script.h"

#include <memory>

namespace zentrak::sparks {
class Engine;
}

namespace zentrak::kindler {

// No splines, no triggers. The particles run on the clock of the display, not on the time of the script. A
// particle file without a "sun" is a line in the log, and nothing is drawn.
class Spark : public ScriptedEffect {
public:
    explicit Spark(Common* common);
    ~Spark() override;

    void setup() override;
    void update(float time, float delta, float progress) override;

    sparks::Engine* getEngine() const { return mEngine.get(); } // null until setup

private:
    std::unique_ptr<sparks::Engine> mEngine;
};

} // namespace zentrak::kindler
