#pragma once

#include "cli/Output.h"

#include <span>
#include <string>

namespace mirovane {

/// mirovanectl without its process: `words` are the command line behind the program's name. Returns the exit
/// status.
int runCli(std::span<const std::string> words, Output& out);

} // namespace mirovane
