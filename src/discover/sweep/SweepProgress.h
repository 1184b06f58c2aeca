#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace mirovane {

/// A host that answered.
struct FoundHost {
    std::uint32_t address = 0; ///< host byte order
    std::string name;          ///< empty: none is known, or not yet

    bool operator==(const FoundHost&) const = default;
};

enum class SweepPhase {
    Sending, ///< probes leave
    Waiting, ///< for the last replies
    Naming,  ///< for names of found hosts
    Over,
};

/// How far a sweep has come. A plain value.
struct SweepProgress {
    SweepPhase phase = SweepPhase::Sending;
    std::uint64_t total = 0;      ///< probes of the whole sweep
    std::uint64_t sent = 0;       ///< asked so far
    std::uint64_t ended = 0;      ///< answered, timed out or failed
    std::uint64_t unanswered = 0; ///< of those sent within the last seconds; see CSweepWindow
    std::size_t found = 0;
    std::size_t lookedUp = 0;          ///< found hosts whose name is known, or known to be none
    std::uint64_t failed = 0;          ///< could not be sent
    int failure = 0;                   ///< errno of the first of them
    bool full = false;                 ///< ended at SweepOptions::mostFound
    std::chrono::milliseconds left{0}; ///< expected until the phase Waiting is over
};

// The same for people.

/// "Some addresses could not be asked" as a sentence; empty when all could.
std::string describeFailures(const SweepProgress& progress);

/// "4 s", "1:05 min", "9:19 h": for people who wait.
std::string describeDuration(std::chrono::milliseconds span);

/// "16,777,216".
std::string groupedNumber(std::uint64_t number);

} // namespace mirovane
