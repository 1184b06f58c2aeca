#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// The datafile's 8-bit text for showing: as it is where the bytes are valid UTF-8, else read as Windows-1252
/// (the code page of the stations that wrote such files). The result is always valid UTF-8.
std::string displayText(std::string_view bytes);

/// UTF-16LE code units, as the wide string form of a datafile holds them, to this platform's 8-bit text
/// (UTF-8). A lone surrogate becomes U+FFFD. `units` has an even number of bytes.
std::string bytesFromUtf16Le(std::string_view units);

bool isValidUtf8(std::string_view bytes);

/// ASCII letters only: names of types, columns and settings.
bool equalIgnoringCase(std::string_view a, std::string_view b);

} // namespace mirovane
