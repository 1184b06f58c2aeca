#pragma once

#include "probes/PatternReader.h"

#include <bitset>
#include <string>

namespace mirovane {

/// The bytes that a character set [...] stands for.
using PatternSet = std::bitset<256>;

/// Reads a set whose opening bracket, at `start`, was just taken; leaves the reader behind the closing one.
PatternSet readPatternSet(PatternReader& reader, std::size_t start);

/// The set in the search engine's language, spelled with hexadecimal codes only, so that nothing in it can be
/// taken for a construct of that engine.
std::string patternSetText(const PatternSet& set);

/// A byte as \xHH.
void appendHexByte(std::string& text, unsigned char byte);

} // namespace mirovane
