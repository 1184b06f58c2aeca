#pragma once

#include <string>
#include <string_view>

namespace mirovane::reference {

/// What differs from release to release.
struct Release {
    std::string version;
    std::string date; ///< "2026-11-23"
};

// Manual pages. All options, commands and fields come from the tables that the programs themselves read.
std::string mirovanePage(const Release& release);
std::string mirovanectlPage(const Release& release);
std::string datafilePage(const Release& release);

// What the shells complete.
std::string bashCompletion();
std::string zshCompletionOfMirovane();
std::string zshCompletionOfMirovanectl();

} // namespace mirovane::reference
