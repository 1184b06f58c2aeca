#pragma once

#include <string>
#include <string_view>

namespace mirovane::test {

/// A file of the source tree, by its path from the root.
std::string sourceFile(std::string_view path);

/// A program of this build, by its name.
std::string builtProgram(std::string_view name);

} // namespace mirovane::test
