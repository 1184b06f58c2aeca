#pragma once

#include "model/Document.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace mirovane {

/// Devices whose properties are edited in one dialog, in the order in which the dialogs follow each other. A
/// type code that nobody knows is one of the devices: there its type can be mended.
enum class PropertiesGroup { Devices, Jacks, LocationMarkers };

PropertiesGroup propertiesGroupOf(std::int32_t type);

/// The fields that people edit in this group, by their names in RecordField, in reading order.
std::span<const std::string_view> propertiesFields(PropertiesGroup group);

/// Texts that mean nothing in this group; they are emptied when one such device is edited.
std::span<const std::string_view> unusedTexts(PropertiesGroup group);

/// Devices of one group, in list order.
struct PropertiesSet {
    PropertiesGroup group = PropertiesGroup::Devices;
    std::vector<DeviceKey> devices;
    bool together = false; ///< chosen with devices of another group: even one device is edited as several are
};

/// The sets that the devices fall into; none of them is empty.
std::vector<PropertiesSet> classified(const CMirovaneDoc& document,
                                      const std::vector<const CHardware*>& devices);

} // namespace mirovane
