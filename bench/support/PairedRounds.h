#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>
#include <type_traits>
#include <vector>

namespace mirovane::bench {

/// Two sides measured in turn, so that a slow moment of the machine hits both: the ratio is the median of the
/// rounds' own ratios, not the ratio of the medians.
struct RatioResult {
    double oursMs = 0;  ///< median
    double otherMs = 0; ///< median
    double ratio = 0;
};

inline double medianOf(std::vector<double> values) {
    if (values.empty())
        return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Fn>
double millisecondsOf(Fn&& fn) {
    const auto start = std::chrono::steady_clock::now();
    fn();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Of the processor, all threads together: for work that waits for nothing. Other programs on the machine do
/// not lengthen it.
template <typename Fn>
double processorMillisecondsOf(Fn&& fn) {
    const auto now = [] {
        std::timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    const double start = now();
    fn();
    return now() - start;
}

/// One unmeasured round, then `rounds` of ours and the other side; who goes first alternates. A side may also
/// return its own measure (milliseconds, bytes: any double) where only a part of it counts.
template <typename Ours, typename Other>
RatioResult measurePaired(Ours&& ours, Other&& other, std::size_t rounds = 15) {
    const auto measure = [](auto& side) {
        if constexpr (std::is_same_v<decltype(side()), double>)
            return side();
        else
            return millisecondsOf(side);
    };
    std::vector<double> oursAll;
    std::vector<double> otherAll;
    std::vector<double> ratios;
    for (std::size_t round = 0; round <= rounds; ++round) {
        double oursNow = 0;
        double otherNow = 0;
        if (round % 2 == 0) {
            oursNow = measure(ours);
            otherNow = measure(other);
        } else {
            otherNow = measure(other);
            oursNow = measure(ours);
        }
        if (round == 0)
            continue;
        oursAll.push_back(oursNow);
        otherAll.push_back(otherNow);
        ratios.push_back(oursNow / otherNow);
    }
    return {medianOf(oursAll), medianOf(otherAll), medianOf(ratios)};
}

inline void printHeader() {
    std::printf("%-4s | %-44s | %12s | %12s | %7s | %7s |\n", "row", "what", "ours", "other", "ratio",
                "goal");
}

/// `unit` belongs to both measures. The verdict is against the goal itself, slack is the reader's business.
inline void printRow(const std::string& row, const std::string& what, const RatioResult& result, double goal,
                     const std::string& unit = "ms") {
    std::printf("%-4s | %-44s | %9.3f %s | %9.3f %s | %7.3f | %7.2f | %s\n", row.c_str(), what.c_str(),
                result.oursMs, unit.c_str(), result.otherMs, unit.c_str(), result.ratio, goal,
                result.ratio <= goal ? "ok" : "MISSED");
    std::fflush(stdout);
}

} // namespace mirovane::bench
