#pragma once

#include "model/Document.h"

#include <string_view>
#include <vector>

namespace mirovane {

enum class DiscoveredSorting { AsListed, ByAddress };

/// True when the address `a` comes before `b`: runs of digits count as numbers, so 10.0.0.9 comes before
/// 10.0.0.10; no address comes last.
bool addressBefore(std::string_view a, std::string_view b);

/// The devices of Discovered/Misc in the order in which their window shows them. Walks the whole list.
std::vector<const CHardware*> discoveredDevices(const CMirovaneDoc& document, DiscoveredSorting sorting);

} // namespace mirovane
