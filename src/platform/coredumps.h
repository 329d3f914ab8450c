#pragma once

namespace quorvane {

/// A dump of a process that holds passwords and texts would hold them in the clear: from now on
/// this one leaves none.
void turnCoreDumpsOff();

} // namespace quorvane
