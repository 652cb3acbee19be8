#include "sparks_emitterinstance.h"

#include "sparks_engine.h"
#include "ztk_system.h"

#include <algorithm>

namespace zentrak::sparks {

EmitterInstance::EmitterInstance() : random(clockRandom()) {}

void EmitterInstance::load(xml::IteratorConst& it) {
    name = it->getValue("name");
    xml::IteratorConst child = it.createIterator("emitter");
    while (++child) {
        mLoaded.push_back(std::make_shared<Emitter>());
        Emitter* emitter = mLoaded.back().get();
        addEmitter(emitter, "null", -1, 50.0f);
        emitter->load(child);
    }
}

void EmitterInstance::save(xml::Iterator& it) const {
    xml::XmlTag tag;
    tag.setName("instance");
    tag.setValue("name", name);
    xml::Iterator children = it.addChild(tag);
    for (const Emitter* emitter : emitters)
        emitter->save(children);
}

void EmitterInstance::addEmitter(Emitter* e, const std::string& emitterName, int num, float rate) {
    e->name = emitterName;
    e->num = num;
    e->rate = rate;
    emitters.push_back(e);
}

void EmitterInstance::removeEmitter(Emitter* e) {
    std::erase(emitters, e);
}

// A fractional particle is emitted with that probability: nothing carries over to the next update.
void EmitterInstance::update(float, float dt) {
    int left = MAX_EMISSION;
    for (Emitter* emitter : emitters) {
        if (!emitter->active || emitter->num == 0)
            continue;
        const float due = dt * emitter->rate; // may be negative, or NaN
        const bool tooMany = due > float(left);
        int count = tooMany ? left : due > 0 ? int(due) : 0;
        if (random.uniform() < due - float(count) && count < left)
            ++count;
        for (; count > 0; --count) {
            if (emitter->num == 0)
                break;
            if (emitter->num > 0)
                --emitter->num;
            if (!engine)
                throw Exception("EmitterInstance::update; '%s' has no engine", name.c_str());
            Spark spark;
            emitter->fillSpark(spark);
            spark.position = matrix.multiply(spark.position);
            spark.velocity = matrix.multiplyVector(spark.velocity);
            engine->addSpark(spark);
            --left;
        }
        if (tooMany && emitter->num != 0 && engine)
            engine->reportLimit(name, MAX_EMISSION);
    }
}

} // namespace zentrak::sparks
