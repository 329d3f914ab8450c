#pragma once

namespace quorvane {

/// Assistive programs are told of the program's own windows as windows from now on: they take a
/// bare widget for a part of something else. Called more than once it does nothing more.
void tellOfAccessibleWindows();

} // namespace quorvane
