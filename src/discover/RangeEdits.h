#pragma once

#include "model/Document.h"
#include "model/records/SpecialRecords.h"

#include <optional>
#include <span>

namespace mirovane {

/// What became of one address range while a user edited the list.
struct RangeEdit {
    std::optional<RangeText> before; ///< nothing: it is new
    std::optional<RangeText> after;  ///< nothing: it was deleted

    bool changes() const { return before != after; }
};

/// Carries the edits out, and leaves ranges alone that they do not speak of: another station may have added
/// some meanwhile. A range that is gone from the document since it was read is not deleted again, but comes
/// back when the user changed it. Returns whether the document changed. Main thread.
bool applyRangeEdits(CMirovaneDoc& document, std::span<const RangeEdit> edits);

} // namespace mirovane
