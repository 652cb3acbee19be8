#include "effect_names.h"

#include "border.h"
#include "clear.h"
#include "cloud.h"
#include "credits.h"
#include "cubejox.h"
#include "face.h"
#include "grand.h"
#include "greet.h"
#include "grid.h"
#include "kub.h"
#include "overlay.h"
#include "rund.h"
#include "spark.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"

#include <algorithm>
#include <cstring>

namespace zentrak::kindler {

namespace {

template <class T>
std::unique_ptr<ScriptedEffect> make(Common& common) {
    return std::make_unique<T>(&common);
}

std::unique_ptr<ScriptedEffect> makeClear(Common&) {
    auto clear = std::make_unique<Clear>();
    clear->color1 = mathbase::Vector4f(0.051f, 0.051f, 0.051f, 0);
    clear->color2 = mathbase::Vector4f(0, 0, 0, 0);
    clear->type = "gradient";
    return clear;
}

auto makeCredits(const char* key) {
    return [key](Common& common) { return std::make_unique<Credits>(&common, key); };
}

} // namespace

const std::vector<CatalogueEntry>& effectCatalogue() {
    static const std::vector<CatalogueEntry> catalogue = {
        {"clear", makeClear},
        {"border", make<Border>},
        {"kub", make<Kub>},
        {"xor", make<Xor>},
        {"rund", make<Rund>},
        {"vul", make<Vul>},
        {"cubejox", make<Cubejox>},
        {"waxon", make<WaxOn>},
        {"overlay", make<Overlay>},
        {"spark", make<Spark>},
        {"greet", make<Greet>},
        {"grand", make<Grand>},
        {"credits_code", makeCredits("code")},
        {"credits_tracking", makeCredits("tracking")},
        {"credits_graphics", makeCredits("graphics")},
        {"credits_bitching", makeCredits("bitching")},
        {"credits_moonpulse", makeCredits("moonpulse")},
        {"credits_zaplin", makeCredits("zaplin")},
        {"credits_orvo", makeCredits("orvo")},
        {"credits_qark", makeCredits("qark")},
        {"grid", make<Grid>},
        {"face", make<Face>},
        {"tunnel", make<Tunnel>},
        {"cloud", make<Cloud>},
    };
    return catalogue;
}

EffectSet::EffectSet(Common& common) {
    for (const CatalogueEntry& entry : effectCatalogue())
        mEffects.push_back(entry.make(common));
}

EffectSet::~EffectSet() {
    while (!mEffects.empty())
        mEffects.pop_back();
}

// An effect declares its names in its constructor, which needs no window.
const std::vector<EffectNames>& effectNames() {
    static const std::vector<EffectNames> names = [] {
        std::vector<EffectNames> result;
        Common common;
        for (const CatalogueEntry& entry : effectCatalogue()) {
            result.push_back(entry.make(common)->getNames());
            result.back().name = entry.name;
        }
        std::sort(result.begin(), result.end(),
                  [](const EffectNames& a, const EffectNames& b) { return std::strcmp(a.name, b.name) < 0; });
        return result;
    }();
    return names;
}

} // namespace zentrak::kindler
