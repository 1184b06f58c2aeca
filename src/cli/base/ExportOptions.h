#pragma once

#include "cli/base/Arguments.h"

#include <array>

namespace mirovane {

/// How a text export looks; shared by `export` and `station --export`.
inline constexpr std::array exportFormatOptions{
    OptionDefinition{"--delimiter", 1, "TEXT", "between two fields of the export, instead of a TAB"},
    OptionDefinition{"--quote-all", 0, "", "every field of the export in double quotes"},
    OptionDefinition{"--quote-comment", 0, "", "the comment in double quotes"},
    OptionDefinition{"--header", 0, "", "begin the export with a line of column names"},
};

} // namespace mirovane
