#pragma once

#include <QString>

#include <string>

namespace mirovane {

/// "plan.mv - Mirovane", "plan.mv [read-only] - Mirovane"; "Untitled - Mirovane" for a floor without a file,
/// with the place for the window system's mark of changes: every other floor is saved as it is changed.
QString frameTitle(const std::string& datafile, bool readOnly);

} // namespace mirovane
