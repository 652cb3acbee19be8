#include "effect_target.h"

#include "ztk_system.h"

namespace zentrak::kindler {

Common::FBOData& findTarget(Common& common, const std::string& name) {
    Common::FBOData* target = common.mFbos[name];
    if (target == nullptr)
        throw Exception("No render target of the name '%s'", name.c_str());
    return *target;
}

} // namespace zentrak::kindler
