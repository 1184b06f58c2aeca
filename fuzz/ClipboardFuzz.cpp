// Any bytes as the text on the clipboard: every line is counted, what was taken goes out and in again
// unchanged, and the message about the rest can be made.

#include "model/floor/Pasting.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace mirovane;

namespace {

constexpr TimeStamp now = 1'700'000'000;
constexpr ClipboardLimits limits{.rows = 40, .problems = 10};

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Dates are left out: a locale's form knows no years before 100, and repeats an hour in autumn.
void comesBack(const CHardware& device) {
    const ClipboardReading again = readClipboardText(clipboardLine(device, ClipboardForm::Bytes), now);
    require(again.rows.size() == 1);
    const CHardware& back = again.rows.front().device;
    require(back.Type == device.Type && back.State == device.State && back.Name == device.Name);
    require(back.Comment == device.Comment && back.VertText == device.VertText);
    require(back.SlashDraw == device.SlashDraw && back.VertDraw == device.VertDraw);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const ClipboardReading reading = readClipboardText(text, now, limits);
    require(reading.rows.size() <= limits.rows && reading.problems.size() <= limits.problems);
    require(reading.beyond == 0 || reading.rows.size() == limits.rows);
    require(reading.rows.size() + reading.dropped + reading.beyond <= size);
    for (const ClipboardReading::Row& row : reading.rows) {
        require(row.device.Type >= DeviceType::first && row.device.Type <= DeviceType::last);
        comesBack(row.device);
    }
    const auto placed = placedForPaste(reading, {{0, 0}, {800, 600}, {0, 0}, 100}, {96, 72});
    require(placed.size() == reading.rows.size());
    for (const CHardware& device : placed)
        require(device.Position.x >= 0 && device.Position.y >= 0);
    const bool clean = reading.problems.empty() && reading.beyond == 0;
    require(pasteProblems(reading, placed.size()).empty() == clean);
    return 0;
}
