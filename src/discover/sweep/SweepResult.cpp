#include "discover/sweep/SweepResult.h"

namespace mirovane {

namespace {

std::string whatBecameOfThem(const SweepResult& result) {
    if (!result.kept)
        return ", nothing was added.";
    const std::size_t found = result.progress.found;
    if (result.added.size() == found)
        return found == 1 ? ", added to the Discovered/Misc window."
                          : ", all added to the Discovered/Misc window.";
    std::string text = ", " + groupedNumber(result.added.size()) + " added to the Discovered/Misc window.";
    if (result.alreadyKnown > 0)
        text += " " + groupedNumber(result.alreadyKnown) + " had become known meanwhile.";
    return text;
}

} // namespace

std::string counted(std::uint64_t number, const char* one, const char* many) {
    return groupedNumber(number) + " " + (number == 1 ? one : many);
}

std::string describeResult(const SweepResult& result) {
    const SweepProgress& progress = result.progress;
    std::string text = result.complete ? "Asked " + counted(progress.sent, "address", "addresses")
                                       : "Stopped after " + groupedNumber(progress.sent) + " of " +
                                             counted(progress.total, "address", "addresses");
    if (progress.found == 0)
        text += ": no host answered.";
    else
        text += ": " + counted(progress.found, "host", "hosts") + " answered" + whatBecameOfThem(result);
    if (result.takenOver)
        text += " Another station runs Live Discover now.";
    if (result.datafileFull)
        text += " The datafile is full.";
    if (result.saveFailed)
        text += " The datafile could not be saved; the message log says why.";
    const std::string failures = describeFailures(progress);
    return failures.empty() ? text : text + " " + failures;
}

} // namespace mirovane
