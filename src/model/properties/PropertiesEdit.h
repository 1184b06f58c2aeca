#pragma once

#include "model/Document.h"
#include "model/records/FieldNames.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace mirovane {

/// What somebody wants changed in some devices, whichever devices those are.
struct PropertiesEdit {
    /// The value as setFieldValue() takes it; texts are bytes for storing.
    struct Assignment {
        const RecordField* field = nullptr;
        std::string value;

        bool operator==(const Assignment&) const = default;
    };

    /// The device's own text gets, or loses, the end that keeps Live Stat away from it.
    struct Lock {
        const RecordField* field = nullptr;
        bool kept = false;

        bool operator==(const Lock&) const = default;
    };

    std::vector<Assignment> assignments;
    std::vector<Lock> locks;
    bool alone = false; ///< of one device by itself: texts that mean nothing in its group are emptied, too

    bool empty() const { return assignments.empty() && locks.empty(); }
    void assign(const RecordField& field, std::string value) {
        assignments.push_back({&field, std::move(value)});
    }

    /// What is assigned to this field last; null when nothing is.
    const std::string* valueOf(std::string_view field) const;
};

/// The text with or without " >>" at its end. The blank keeps the mark from being part of an address that is
/// looked up.
std::string withKept(std::string text, bool kept);

/// The device as it would be, or one sentence that says which value does not fit and what to give instead.
Result<CHardware, std::string> changedBy(const PropertiesEdit& edit, const CHardware& device);

/// Changes these devices and stamps Modified; those that have gone are left out, and so are values that do
/// not fit. For within an edit. Returns how many devices changed. An empty edit changes none.
std::size_t applyProperties(CMirovaneDoc& document, std::span<const DeviceKey> devices,
                            const PropertiesEdit& edit);

} // namespace mirovane
