#pragma once

namespace quorvane {

/// Assistive programs find the pop-ups of a document's window among its parts from now on: the
/// toolkit leaves them out. Called more than once it does nothing more.
void tellOfAccessiblePopups();

} // namespace quorvane
