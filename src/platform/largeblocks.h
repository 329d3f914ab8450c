#pragma once

namespace quorvane {

/// Makes what is large go back to the system as soon as it is freed, from now on. Left to itself,
/// the allocator keeps it for later, in pieces between what is still in use: as much again as
/// decoded pictures take, and readable there after a lock.
void returnLargeBlocksAtOnce();

} // namespace quorvane
