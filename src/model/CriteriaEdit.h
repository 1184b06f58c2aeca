#pragma once

#include "model/Document.h"
#include "model/records/Criteria.h"

#include <cstdint>
#include <string>

namespace mirovane {

/// One criteria value from its text, and what follows from it: devices of the type on the floor map forget
/// which text files they searched, so that their rules are evaluated again. A row that a damaged file lost is
/// made anew. Main thread.
void setCriteria(CMirovaneDoc& document, std::int32_t type, int row, CriteriaColumn column,
                 const std::string& text);

/// The user chose an action for a row: stores it and what comes with it. A state row has no field to take out
/// of a match, and "Who's Logon" has one fixed argument.
void chooseAction(CMirovaneDoc& document, std::int32_t type, int row, const std::string& action);

/// Every type's rows get their defaults; rows that are missing are not made.
void resetCriteria(CMirovaneDoc& document);

/// Devices of the type on the floor map search their text files again. `allRows` false: rows 7 to 11 only.
void forgetTextFileStamps(CMirovaneDoc& document, std::int32_t type, bool allRows);

} // namespace mirovane
