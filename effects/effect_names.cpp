#include "effect_names.h"

namespace zentrak::kindler {

const std::vector<EffectNames>& effectNames() {
    using T = TriggerNames;
    static const std::vector<EffectNames> names = {
        {"border", {"alpha", "border"}, {}, false},
        {"clear",
         {"alpha"},
         {{"type", T::WORDS, {"gradient", "flat"}},
          {"color",
           T::WORDS,
           {"white", "black", "cubejox_black", "cubejox_orange", "dark_blue", "dark_gray"}}},
         false},
        {"cloud", {"alpha"}, {}, false},
        {"credits_bitching", {"zoom"}, {}, true},
        {"credits_code", {"zoom"}, {}, true},
        {"credits_graphics", {"zoom"}, {}, true},
        {"credits_moonpulse", {"zoom"}, {}, true},
        {"credits_orvo", {"zoom"}, {}, true},
        {"credits_qark", {"zoom"}, {}, true},
        {"credits_tracking", {"zoom"}, {}, true},
        {"credits_zaplin", {"zoom"}, {}, true},
        {"cubejox",
         {"alpha", "bw", "zoom"},
         {{"drum1", T::UNUSED, {}},
          {"drum2", T::UNUSED, {}},
          {"drum3", T::UNUSED, {}},
          {"drum4", T::UNUSED, {}}},
         false},
        {"face", {"alpha"}, {}, false},
        {"grand", {"alpha"}, {}, false},
        {"greet", {}, {}, true},
        {"grid", {"alpha"}, {}, false},
        {"kub",
         {"ilvo marsten", "alpha"},
         {{"turn2", T::UNUSED, {}}, {"turn", T::UNUSED, {}}, {"expand", T::UNUSED, {}}},
         false},
        {"overlay", {"alpha"}, {{"type", T::WORDS, {"shader", "solid", "flash", "logo", "finally"}}}, false},
        {"rund", {"alpha"}, {{"shot", T::UNUSED, {}}}, false},
        {"spark", {}, {}, false},
        {"tunnel", {}, {}, false},
        {"vul", {"intensity"}, {}, false},
        {"waxon", {}, {{"which", T::TARGET, {"vaddr"}}}, false},
        {"xor", {"alpha"}, {{"shot", T::UNUSED, {}}}, false},
    };
    return names;
}

} // namespace zentrak::kindler
