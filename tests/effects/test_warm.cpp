// Once warm, no update of an effect allocates memory.
#include "allocations.h"
#include "border.h"
#include "credits.h"
#include "cubejox.h"
#include "effect_test.h"
#include "face.h"
#include "grand.h"
#include "greet.h"
#include "kub.h"
#include "overlay.h"
#include "rund.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

class WarmTest : public test::EffectTest {
protected:
    // Draws `effect` for some frames with every trigger and spline, and expects no allocation in later ones.
    // By then OpenGL has done its own.
    void expectNone(Effect& effect, const char* name, const char* trigger, const std::string& value) {
        const std::string triggerName = trigger, alpha = "alpha";
        test::prepare(effect, display(), name);
        effect.executeTrigger(0, triggerName, value);
        size_t asked = 0;
        for (int i = 0; i < 6; ++i) {
            frame([&] {
                glFinish();
                const size_t before = test::allocationCount();
                effect.updateSpline(10, alpha, 0.8f);
                effect.update(10, 0, 0.5f);
                glFinish();
                effect.postUpdate(10, 0, 0.5f);
                glFinish();
                asked = test::allocationCount() - before;
            });
        }
        EXPECT_EQ(asked, 0u) << name;
    }
};

} // namespace

TEST_F(WarmTest, NoEffectAsksForMemory) {
    WaxOn waxon(&mCommon);
    Overlay overlay(&mCommon);
    Border border(&mCommon);
    Rund rund(&mCommon);
    Xor comet(&mCommon);
    Kub kub(&mCommon);
    Vul vul(&mCommon);
    Cubejox cubejox(&mCommon);
    Face face(&mCommon);
    Greet greet(&mCommon);
    Grand grand(&mCommon);
    Credits credits(&mCommon, "qark");
    Tunnel tunnel(&mCommon);
    expectNone(waxon, "waxon", "which", "vaddr"); // and makes the target that Overlay shows
    expectNone(overlay, "overlay", "type", "shader");
    expectNone(border, "border", "", "");
    expectNone(rund, "rund", "shot", "");
    expectNone(comet, "xor", "shot", "");
    expectNone(kub, "kub", "", "");
    expectNone(vul, "vul", "", "");
    expectNone(cubejox, "cubejox", "drum1", "");
    expectNone(face, "face", "", "");
    expectNone(greet, "greet", "next", "");
    expectNone(grand, "grand", "", "");
    expectNone(credits, "credits_qark", "", "");
    expectNone(tunnel, "tunnel", "", "");
}
