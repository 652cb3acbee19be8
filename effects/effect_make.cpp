#include "effect_make.h"

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

#include <map>

namespace zentrak::kindler {

namespace {

using Maker = std::unique_ptr<Effect> (*)(Common*);

template <class Type>
std::unique_ptr<Effect> make(Common* common) {
    return std::make_unique<Type>(common);
}

std::unique_ptr<Effect> makeClear(Common*) {
    auto clear = std::make_unique<Clear>();
    clear->color1 = mathbase::Vector4f(0.051f, 0.051f, 0.051f, 0);
    clear->color2 = mathbase::Vector4f(0, 0, 0, 0);
    clear->type = "gradient";
    return clear;
}

const std::string CREDITS = "credits_";

} // namespace

std::unique_ptr<Effect> makeEffect(const std::string& name, Common* common) {
    static const std::map<std::string, Maker> makers = {
        {"border", make<Border>},   {"clear", makeClear},       {"cloud", make<Cloud>},
        {"cubejox", make<Cubejox>}, {"face", make<Face>},       {"grand", make<Grand>},
        {"greet", make<Greet>},     {"grid", make<Grid>},       {"kub", make<Kub>},
        {"rund", make<Rund>},       {"overlay", make<Overlay>}, {"spark", make<Spark>},
        {"tunnel", make<Tunnel>},   {"vul", make<Vul>},         {"waxon", make<WaxOn>},
        {"xor", make<Xor>},
    };
    if (const auto found = makers.find(name); found != makers.end())
        return found->second(common);
    if (name.starts_with(CREDITS))
        return std::make_unique<Credits>(common, name.substr(CREDITS.size()));
    return nullptr;
}

} // namespace zentrak::kindler
