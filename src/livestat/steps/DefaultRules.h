#pragma once

#include "model/Document.h"

#include <cstddef>

namespace mirovane {

/// How many devices have a field that Live Stat would write with the default criteria, if it found something
/// else for it. A field that its user keeps does not count.
std::size_t devicesWrittenByDefaults(const CMirovaneDoc& document);

} // namespace mirovane
