#include "discover/sweep/SweepProgress.h"

#include <system_error>

namespace mirovane {

std::string describeFailures(const SweepProgress& progress) {
    if (progress.failed == 0)
        return {};
    std::string text =
        groupedNumber(progress.failed) +
        (progress.failed == 1 ? " address could not be asked" : " addresses could not be asked");
    if (progress.failure != 0)
        text += ": " + std::generic_category().message(progress.failure);
    return text + ".";
}

std::string describeDuration(std::chrono::milliseconds span) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(span).count();
    const auto two = [](std::int64_t value) {
        return (value < 10 ? "0" : "") + std::to_string(value);
    };
    if (seconds < 60)
        return std::to_string(seconds) + " s";
    if (seconds < 3600)
        return std::to_string(seconds / 60) + ":" + two(seconds % 60) + " min";
    return std::to_string(seconds / 3600) + ":" + two(seconds / 60 % 60) + " h";
}

std::string groupedNumber(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;)
        text.insert(at -= 3, ",");
    return text;
}

} // namespace mirovane
