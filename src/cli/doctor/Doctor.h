#pragma once

#include "cli/doctor/Check.h"

#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

namespace mirovane {

struct Finding {
    std::string_view check;
    CheckResult result;
};

/// Runs every check that applies, one after the other, each for at most `patience`: a share or a name server
/// that hangs is a finding, too. When the datafile's folder hangs it is not asked again.
std::vector<Finding> examine(const std::shared_ptr<DoctorPlaces>& places, std::chrono::milliseconds patience);

} // namespace mirovane
