// A source of particles: a named group of emitters with one matrix.
#pragma once

#include "mb_matrix4x4col.h"
#include "mb_random.h"
#include "sparks_emitter.h"
#include "xml_iterator.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::sparks {

class Engine;

// A copy shares its emitters, and what is left of their counts.
class EmitterInstance {
public:
    // The most that one update emits, over all emitters; the rest is dropped.
    static constexpr int MAX_EMISSION = 200000;

    mathbase::Matrix4x4Col matrix;  // transform of new particles into the world
    Engine* engine = nullptr;       // takes the particles; not owned
    std::vector<Emitter*> emitters; // those loaded are owned, jointly with all copies; others are not
    std::string name = "default";
    mathbase::Random random;

    EmitterInstance(); // the random numbers start from the processor time

    // Reads the tag that the iterator is on, and adds its emitters.
    void load(xml::IteratorConst& it);

    // Adds a child "instance" after the one that the iterator is on, and moves onto it.
    void save(xml::Iterator& it) const;

    // Gives `e`, which stays the caller's, these three and appends it.
    void addEmitter(Emitter* e, const std::string& emitterName, int num, float rate);

    // Takes out every entry of this emitter; it is not destroyed.
    void removeEmitter(Emitter* e);

    // Emits what is due in `dt` seconds; `time` is unused. Throws "EmitterInstance::update; '%s' has no
    // engine" at the first particle for none.
    void update(float time, float dt);

private:
    std::vector<std::shared_ptr<Emitter>> mLoaded; // owns what load made
};

} // namespace zentrak::sparks
