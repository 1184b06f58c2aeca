#include "model/properties/MarkerPictures.h"

#include <utility>

namespace mirovane {

std::vector<std::string> picturesFrom(std::string_view text) {
    std::vector<std::string> paths;
    std::string path;
    for (const char character : text) {
        const bool ends = character == '\n' || character == '\r';
        if (!ends)
            path += character;
        else if (!path.empty())
            paths.push_back(std::exchange(path, {}));
    }
    if (!path.empty())
        paths.push_back(std::move(path));
    return paths;
}

std::string picturesText(const std::vector<std::string>& paths) {
    std::string text;
    for (const std::string& path : paths)
        text += (text.empty() ? "" : "\n") + path;
    return text;
}

} // namespace mirovane
