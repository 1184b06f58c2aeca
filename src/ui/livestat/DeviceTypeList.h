#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// Entries of the criteria window's "Device:" list, Jack to Wireless: the type's name, blanks, and the code
/// of the type, so far to the right that a list of ordinary width does not show it.
std::vector<std::string> deviceTypeEntries();

/// The code at the end of an entry; 0 when there is none.
std::int32_t typeOfEntry(std::string_view entry);

} // namespace mirovane
