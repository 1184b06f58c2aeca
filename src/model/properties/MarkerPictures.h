#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// The pictures of a location marker: paths, a line each, in the text that the marker keeps them in.
std::vector<std::string> picturesFrom(std::string_view text);
std::string picturesText(const std::vector<std::string>& paths);

} // namespace mirovane
