#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace mirovane {

/// The fields that a search may look through, in the order in which their texts follow each other.
enum class FindField : std::uint8_t {
    RecID,
    Name,
    IPAddress,
    Username,
    MACAddress,
    ToJack,
    Comment,
    SlashText,
    BackslashText,
    HorzText,
    VertText,
    ToDo,
};

constexpr std::size_t findFieldCount = 12;

/// What a search looks for.
enum class FindMode : std::uint8_t { Text, Reminder, ReminderDue };

/// What the Find dialog shows. Lives as long as the window; it is never saved. The text is UTF-8.
struct FindSettings {
    std::string FindText;
    bool FindReminder = false;
    bool FindReminderDue = false;
    bool FindWholeWord = false;
    bool FindMatchCase = false;

    /// On at first: a due reminder counts wherever the device is, so F4 must come by it.
    bool FindIncludeMisc = true;

    std::array<bool, findFieldCount> included = {};

    FindSettings() {
        for (const FindField field : {FindField::Name, FindField::IPAddress, FindField::Username})
            include(field, true);
    }

    bool includes(FindField field) const { return included[static_cast<std::size_t>(field)]; }
    void include(FindField field, bool on) { included[static_cast<std::size_t>(field)] = on; }

    FindMode mode() const {
        if (FindReminderDue)
            return FindMode::ReminderDue;
        return FindReminder ? FindMode::Reminder : FindMode::Text;
    }

    /// The same, for finding the Location Marker with this record ID: what has nothing to do with it (case,
    /// Discovered/Misc, the direction texts) stays.
    FindSettings forMarker(std::int32_t recID) const;

    bool operator==(const FindSettings&) const = default;
};

} // namespace mirovane
