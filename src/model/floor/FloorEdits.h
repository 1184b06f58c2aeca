#pragma once

#include "model/Selection.h"
#include "model/edit/EditDoor.h"
#include "model/floor/Arrange.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a command of the floor is about to do: made from the document as it is, carried out by the door.
struct FloorEdit {
    EditRequest request;
    std::function<void(CMirovaneDoc&)> change;
};

/// "Move 12 devices", "Move 1 device", and the `rest` behind it: the name of a step.
EditName stepName(std::string_view verb, std::size_t devices, std::string_view rest = {});

std::vector<DeviceKey> keysOf(const CMirovaneDoc& document, const CSelection::Devices& devices);

/// A new device of this type, selected alone.
FloorEdit addDevice(std::int32_t type, MapPoint place);

/// "Added Computer"; the Unknown type is called a generic device.
std::string addedMessage(std::int32_t type);

/// New devices as they are given, each with a record ID of its own; they alone are selected. `added` counts
/// them: the datafile may be full before the last.
FloorEdit addDevices(EditName name, std::vector<CHardware> devices, std::size_t& added);

/// `verb`: "Move", "Align".
FloorEdit moveDevices(std::string_view verb, std::vector<DeviceMove> moves);

FloorEdit deleteDevices(std::vector<DeviceKey> devices);
std::string deleteQuestion(std::size_t devices, bool fromDiscoveredMisc);

/// To the Discovered/Misc window. Devices that are there already stay as they are.
FloorEdit moveToMisc(std::vector<DeviceKey> devices);
std::string moveToMiscQuestion(std::size_t devices);
std::string movedToMiscMessage(std::size_t devices);

/// Back to the state before the first check. What Live Stat remembers of searched files stays valid where it
/// was.
FloorEdit resetLiveStatus(std::vector<DeviceKey> devices);

/// One more corner of a Location Marker's area; `StartNewArea`: the first of a new one.
FloorEdit addMarkerPoint(std::int32_t marker, MapPoint at, bool StartNewArea);

/// Copies of devices, each `by` further. What belongs to one machine alone is not copied: its addresses, its
/// user, its state and its reminder. The number at the end of a name (of a Jack: of its Jack#) is counted up
/// to the next one that no device has.
std::vector<CHardware> duplicates(const CMirovaneDoc& document, const CSelection::Devices& devices,
                                  MapPoint by);

} // namespace mirovane
