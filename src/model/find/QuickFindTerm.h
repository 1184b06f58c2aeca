#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// One word that the user typed, in upper case.
struct QuickFindTerm {
    std::string text;

    /// The same as the digits of a MAC address without what separates them; empty when it cannot be one.
    std::string macDigits;
};

/// The words between blanks, the longest first: it fits the fewest devices.
std::vector<QuickFindTerm> quickFindTerms(std::string_view typed);

/// "021B5E000102" for 02:1b:5e:00:01:02, 02-1B-5E-00-01-02, 021b.5e00.0102, 021b-5e00-0102 and 2:1b:5e:0:1:2,
/// with or without the ">>" of a field that its user keeps. Empty for any other text.
std::string macDigitsOf(std::string_view field);

} // namespace mirovane
