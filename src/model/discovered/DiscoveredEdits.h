#pragma once

#include "model/Document.h"
#include "model/edit/EditDoor.h"

#include <functional>
#include <string>
#include <vector>

namespace mirovane {

/// A command of the Discovered/Misc window, ready for the door for edits.
struct DiscoveredEdit {
    EditRequest request;
    std::function<void(CMirovaneDoc&)> change;
    std::string question; ///< asked before; empty: none
    std::string done;     ///< for the message log
};

/// From Discovered/Misc to the floor. One place: all of them go there. As many places as devices: each has
/// its own. Devices that are on the floor already stay as they are.
DiscoveredEdit moveToFloor(std::vector<DeviceKey> devices, std::vector<MapPoint> places);

/// The devices become printers, or whatever `type` (a floor code) says, where they are.
DiscoveredEdit changeType(std::vector<DeviceKey> devices, std::int32_t type);

/// What is selected in the window and, as everywhere with Delete, on the floor.
DiscoveredEdit deleteSelected(std::vector<DeviceKey> devices);

/// Places for so many devices that were dropped at `corner`: rows of a square, a device's room apart.
std::vector<MapPoint> droppedPlaces(MapPoint corner, std::size_t devices);

} // namespace mirovane
