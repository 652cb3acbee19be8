// The batch of the effects that draw many boxes.
#pragma once

#include "dis_batch.h"

namespace zentrak::kindler {

// One for all of them, so that it holds the memory of the largest only. Flush it after use, and reset its
// options.
display::Batch& sharedBatch();

} // namespace zentrak::kindler
