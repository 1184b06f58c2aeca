#include "station/ReminderEdits.h"

#include "model/records/Dates.h"

#include <cmath>
#include <functional>

namespace mirovane {

namespace {

constexpr TimeStamp minutes = 60;
constexpr double nineInTheMorning = 9.0 / 24;

/// What was due is so no longer from the edit on, not only from the next check.
SaveReport editDue(CStation& station, const std::string& verb,
                   const std::function<void(CHardware&)>& change) {
    EditRequest request{EditRequest::Kind::Change, {}, {}};
    for (const CHardware* device : selectedDueDevices(station))
        request.devices.push_back(station.document().keyOf(*device));
    if (request.devices.empty())
        return {};
    const std::size_t count = request.devices.size();
    request.name = {verb + (count == 1 ? " 1 reminder" : " %1 reminders"), count};
    return station.edit(request, [&](CMirovaneDoc& document) {
        for (const DeviceKey& key : request.devices)
            if (const CHardware* device = document.findDevice(key)) {
                document.editByUser(*device, change);
                document.setReminderDue(*device, false);
            }
    });
}

} // namespace

DateTime putOffTo(ReminderDelay delay, TimeStamp now) {
    if (delay == ReminderDelay::TenMinutes)
        return localDateTime(now + 10 * minutes);
    if (delay == ReminderDelay::Hour)
        return localDateTime(now + 60 * minutes);
    DateTime tomorrow = localDateTime(now);
    tomorrow.value = std::floor(tomorrow.value) + 1 + nineInTheMorning;
    return tomorrow;
}

CSelection::Devices selectedDueDevices(const CStation& station) {
    CSelection::Devices due;
    if (station.reminders().DueCount() == 0)
        return due; // asked at every idle moment, and so nearly always
    for (const CHardware* device : station.selection().members())
        if (device->ReminderOn != 0 && device->ReminderDue != 0)
            due.push_back(device);
    return due;
}

SaveReport putOffReminders(CStation& station, ReminderDelay delay) {
    const DateTime when = putOffTo(delay, station.document().now());
    return editDue(station, "Put off", [&when](CHardware& device) { device.ReminderDate = when; });
}

SaveReport endReminders(CStation& station) {
    return editDue(
        station, "Done with", [](CHardware& device) { device.ReminderOn = 0; });
}

} // namespace mirovane
