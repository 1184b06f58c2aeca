#pragma once

#include "model/records/Hardware.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace mirovane {

/// Which values of the devices' fields Live Stat has found since the program began. Every other one may have
/// been typed by somebody: where a step replaces it, the log names it. The datafile does not tell the two
/// apart, so that a value which was found before the program began counts as typed, too, once. Main thread.
class CFoundValues {
public:
    /// The step of this row makes `after` of `before`. The line for the log; nothing when no typed value goes
    /// with it.
    std::optional<std::string> replace(const CHardware& before, const CHardware& after, int row);

    void clear() { found_.clear(); }

private:
    /// A hash does for the value: two that share one would cost a line.
    std::unordered_map<std::uint64_t, std::size_t> found_; ///< by record ID and row
};

} // namespace mirovane
