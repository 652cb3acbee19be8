// The batch of the effects that draw many boxes.
#pragma once

#include "dis_batch.h"

namespace zentrak::kindler {

// One for all of them, so that its memory is that of the largest. Whoever uses it leaves it flushed, and its
// options as they are at the start.
display::Batch& sharedBatch();

} // namespace zentrak::kindler
