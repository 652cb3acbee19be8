// Makes a render target, and draws the spans nested in its own into it.
#pragma once

#include "effect_script.h"

#include <memory>
#include <string>

namespace zentrak::kindler {

// Triggers: "which" (its value is the name of the target; none, and the nested spans draw to the screen).
class WaxOn : public ScriptedEffect {
public:
    static constexpr int WIDTH = 1280; // of the target, whatever the size of the display
    static constexpr int HEIGHT = 1024;

    explicit WaxOn(Common* common);
    ~WaxOn() override;

    void setup() override; // makes "vaddr"
    void update(float time, float delta, float progress) override;
    void postUpdate(float time, float delta, float progress) override;

private:
    Common* mCommon; // not owned
    std::string which;
    std::unique_ptr<Common::FBOData> mTarget; // registered as "vaddr"
};

} // namespace zentrak::kindler
