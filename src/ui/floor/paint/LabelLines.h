#pragma once

#include "model/FindState.h"
#include "model/Settings.h"
#include "model/records/Hardware.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// Colour behind one line of text. `Canvas` is what the canvas itself uses.
enum class LabelBackground : std::uint8_t { Canvas, Due, ShowAll, LoggedOn };

/// One line of text at a device, as bytes of the datafile.
struct LabelLine {
    std::string text;
    LabelBackground background = LabelBackground::Canvas;
    bool underline = false;
    int row = 0; ///< rows of LabelFontHeight below the layout box from 0 on; -1 is the row above the icon

    bool operator==(const LabelLine&) const = default;
};

/// What Find and the reminder check ask of the labels, and whether a button is down.
struct LabelState {
    bool LabelsShown = true;    ///< off while a button is down: selected devices go without labels
    bool ReminderPhase = false; ///< flips with every reminder check
    FindState find;
};

/// The labels of a device in the order in which they are written. A later line may cover an earlier one.
std::vector<LabelLine> labelLines(const CHardware& device, const DisplaySettings& display,
                                  const LabelState& state);

/// What a reminder search writes over the first label of a selected device.
std::optional<LabelLine> foundReminderLine(const CHardware& device, const LabelState& state);

} // namespace mirovane
