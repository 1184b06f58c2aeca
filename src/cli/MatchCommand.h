#pragma once

#include "cli/Output.h"
#include "probes/Pattern.h"

#include <string_view>

namespace mirovane {

/// Says whether the text matches.
ExitStatus matchText(const CompiledPattern& pattern, std::string_view text, Output& out);

/// Prints the lines that match of what can be read from the descriptor `input`, as they are read.
ExitStatus matchLines(const CompiledPattern& pattern, int input, Output& out);

} // namespace mirovane
