#include "effect_batch.h"

namespace zentrak::kindler {

display::Batch& sharedBatch() {
    static display::Batch batch;
    return batch;
}

} // namespace zentrak::kindler
