#pragma once

#include "model/records/Hardware.h"
#include "platform/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace mirovane::demo {

/// Reads the demo's devices from a table as a spreadsheet keeps it: comma-separated, a first line of column
/// names, double quotes around cells that hold commas. Most columns are record fields by name; the others:
///   Type      the display name
///   Place     "floor", or "misc" for the Discovered/Misc window
///   X, Y      the position on the map
///   Draw      which direction lines are drawn, any of / \ - |
///   Reminder  date and time as 2026-01-12 09:30, empty for none
///   Priority  empty for what a new device of the type gets
/// The two characters \n in a Comment are a line break. The records carry no record ID and no time stamp yet.
/// The error says which line is wrong and how.
Result<std::vector<CHardware>, std::string> readDeviceTable(std::string_view text);

} // namespace mirovane::demo
