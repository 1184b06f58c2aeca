#pragma once

#include "model/floor/Placement.h"
#include "model/rows/ClipboardText.h"

#include <cstddef>
#include <string>
#include <vector>

namespace mirovane {

/// The devices that were read, where they go: one where a new device goes, more in a grid around that place,
/// `cell` apart.
std::vector<CHardware> placedForPaste(const ClipboardReading& reading, const FloorWindow& window,
                                      PixelSize cell);

/// "Pasted 12 device(s)", for the message log.
std::string pastedMessage(std::size_t added);

/// What did not become a device, and why: counts, then the first lines with their problems. Empty when all
/// went well. `added`: those for which the datafile had room.
std::string pasteProblems(const ClipboardReading& reading, std::size_t added);

} // namespace mirovane
