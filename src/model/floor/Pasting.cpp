#include "model/floor/Pasting.h"

#include <algorithm>

namespace mirovane {

namespace {

std::string counted(std::size_t count, const std::string& one, const std::string& many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace

std::vector<CHardware> placedForPaste(const ClipboardReading& reading, const FloorWindow& window,
                                      PixelSize cell) {
    const auto places = gridAround(newDevicePlace(window), reading.rows.size(), cell);
    std::vector<CHardware> devices;
    devices.reserve(reading.rows.size());
    for (std::size_t i = 0; i < reading.rows.size(); ++i) {
        devices.push_back(reading.rows[i].device);
        devices.back().Position = places[i];
    }
    return devices;
}

std::string pastedMessage(std::size_t added) {
    return "Pasted " + std::to_string(added) + " device(s)";
}

std::string pasteProblems(const ClipboardReading& reading, std::size_t added) {
    constexpr std::size_t mostLines = 10;
    const std::size_t noRoom = reading.rows.size() - added + reading.beyond;
    if (reading.problems.empty() && noRoom == 0)
        return {};
    std::string text = counted(added, "device was pasted.", "devices were pasted.");
    if (reading.dropped > 0)
        text += " " + counted(reading.dropped, "line was dropped.", "lines were dropped.");
    if (noRoom > 0)
        text += " " + counted(noRoom, "more line was not read: ", "more lines were not read: ") +
                "a datafile holds 65,534 records.";
    text += reading.problems.empty() ? "" : "\n\n";
    const std::size_t shown = std::min(mostLines, reading.problems.size());
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? "Line " : "\nLine ") + std::to_string(reading.problems[i].line) + ": " +
                reading.problems[i].sentence + ".";
    if (reading.problems.size() > shown)
        text += "\n...";
    return text;
}

} // namespace mirovane
