#include "model/floor/FloorEdits.h"
#include "model/floor/MarkedArea.h"
#include "model/floor/Placement.h"

#include <algorithm>
#include <string>
#include <unordered_set>

namespace mirovane {

namespace {

/// Texts that devices have in one field.
class CTakenTexts {
public:
    CTakenTexts(const CMirovaneDoc& document, std::string CHardware::*field) : field_(field) {
        for (std::size_t i = 0; i < document.size(); ++i)
            if (document.at(i).isDevice())
                taken_.insert(document.at(i).*field);
    }

    /// "pc-007" becomes "pc-008", or the first after it that is free. Nothing to count: the text as it is.
    void countUp(CHardware& device) {
        std::string& text = device.*field_;
        const std::size_t digits =
            text.size() - std::min(text.size(), text.find_last_not_of("0123456789") + 1);
        // A longer number is a serial number or an address, and would not fit the arithmetic.
        constexpr std::size_t mostDigits = 9;
        if (digits == 0 || digits > mostDigits)
            return;
        const std::string stem = text.substr(0, text.size() - digits);
        std::uint64_t number = std::stoull(text.substr(text.size() - digits));
        do {
            std::string next = std::to_string(++number);
            next.insert(0, digits - std::min(digits, next.size()), '0');
            text = stem + next;
        } while (!taken_.insert(text).second);
    }

private:
    std::string CHardware::*field_;
    std::unordered_set<std::string> taken_;
};

std::string movedArea(const std::string& area, MapPoint by) {
    std::string text;
    for (const MapPoint& corner : parseMarkedArea(area)) {
        const MapPoint at = moved(corner, by);
        text += std::to_string(at.x) + "," + std::to_string(at.y) + ",";
    }
    return text;
}

CHardware copyOf(const CHardware& device, TimeStamp now) {
    CHardware copy;
    copyStored(device, copy);
    copy.RecID = 0;
    copy.Modified = now;
    copy.StampsModified = 0;
    copy.RuleStamps = {};
    copy.State = DeviceState::Def;
    copy.ReminderDue = copy.ReminderOn = 0;
    copy.ReminderDate = {};
    copy.ToDo.clear();
    copy.IPAddress.clear();
    copy.MACAddress.clear();
    copy.Username.clear();
    return copy;
}

} // namespace

std::vector<CHardware> duplicates(const CMirovaneDoc& document, const CSelection::Devices& devices,
                                  MapPoint by) {
    CTakenTexts names(document, &CHardware::Name);
    CTakenTexts jacks(document, &CHardware::ToJack);
    std::vector<CHardware> copies;
    copies.reserve(devices.size());
    for (const CHardware* device : devices) {
        CHardware copy = copyOf(*device, document.now());
        copy.Position = moved(copy.Position, by);
        names.countUp(copy);
        if (floorCode(copy.Type) == DeviceType::Jack)
            jacks.countUp(copy);
        if (floorCode(copy.Type) == DeviceType::LocationMarker)
            copy.ToJack = movedArea(copy.ToJack, by);
        copies.push_back(std::move(copy));
    }
    return copies;
}

} // namespace mirovane
