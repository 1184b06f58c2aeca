#pragma once

#include <cstddef>
#include <cstdint>

namespace mirovane {

/// How a device is found again after the records were read anew. A record ID is one device's own, but a
/// damaged file may hold it twice: `twin` then counts the devices with this ID that come before it in the
/// list, so that nobody edits or deletes the other one.
struct DeviceKey {
    std::int32_t recID = 0;
    std::size_t twin = 0;

    bool operator==(const DeviceKey&) const = default;
};

/// A device that was added here got another record ID, because another station had given its own to one of
/// its own.
struct Renumbering {
    std::int32_t from = 0;
    std::int32_t to = 0;
};

} // namespace mirovane
