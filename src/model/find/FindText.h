#pragma once

#include "model/find/FindSettings.h"
#include "model/records/Hardware.h"

#include <string>
#include <string_view>

namespace mirovane {

/// Stands for an empty search text, and is looked for like any other: so an empty search finds nothing.
constexpr std::string_view emptyFindText = "<User clicked the Find button without entering any data>";

/// Which devices a search fits. Made once for a search, then asked for device after device.
class CFindRule {
public:
    /// `mode` may differ from that of the settings: F4 looks for due reminders whatever the dialog says.
    CFindRule(const FindSettings& settings, FindMode mode);

    bool isCandidate(const CHardware& record) const;
    bool matches(const CHardware& candidate) const;

private:
    std::string haystackOf(const CHardware& device) const;
    bool holdsNeedle(std::string_view haystack) const;

    FindSettings settings_;
    FindMode mode_;
    std::string needle_;
};

} // namespace mirovane
