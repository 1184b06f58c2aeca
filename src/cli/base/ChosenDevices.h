#pragma once

#include "cli/base/Datafiles.h"
#include "model/Document.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// A device as people call it: Printer "laser-2", or a jack by its number.
std::string describeDevice(const CHardware& device);

/// The devices that a command was given by RECID, in list order, or why it does nothing: no device has one of
/// the RECIDs (the answer is no), or the datafile at `path` is damaged and two devices have it (file failed):
/// whichever of the two the command took could be the wrong one. `what` begins the sentence: "cannot delete".
using ChosenDevices = Result<std::vector<const CHardware*>, EditRefusal>;
ChosenDevices chosenDevices(const Datafile::RecordList& records, std::span<const std::int32_t> recIDs,
                            std::string_view what, const std::string& path);
ChosenDevices chosenDevices(const CMirovaneDoc& document, std::span<const std::int32_t> recIDs,
                            std::string_view what, const std::string& path);

} // namespace mirovane
