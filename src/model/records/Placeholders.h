#pragma once

#include "model/records/Hardware.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What the expanded text is for.
enum class ExpandMode {
    Argument, ///< of a Live Stat action: field values as they are
    Pattern,  ///< of a Live Stat action: field values are matched literally inside the regular expression
    Command,  ///< line of an External Application: knows $mvW, does not know $mvM
};

/// The selector of $mvW, which stands for text that the user types when the command runs.
constexpr char insertedTextSelector = 'W';

/// A piece of a template: a placeholder, or one or more characters that are copied as they are.
struct TemplatePiece {
    char selector = 0;     ///< upper case, 'N' for $mvN; 0 for text
    std::string_view text; ///< of the template itself
};

/// Cuts a template at its placeholders, which depend on the mode. Of two placeholders written back to back
/// only the first is one; datafiles rely on it. Pure, any thread.
std::vector<TemplatePiece> templatePieces(std::string_view text, ExpandMode mode);

/// What a placeholder other than $mvW stands for, as it goes into the expanded text: the field's value
/// without the mark of a field that the user keeps.
std::string placeholderValue(char selector, const CHardware& device, ExpandMode mode);

/// Replaces $mvN, $mvI, ... (any case) by the device's fields, as `templatePieces` finds them. Pure, any
/// thread.
///
/// `insertedText` gives what the user typed for $mvW; it is called at each $mvW of a Command. Empty: $mvW
/// stays as text.
std::string Expand(std::string_view text, const CHardware& device, ExpandMode mode,
                   const std::function<std::string()>& insertedText = {});

} // namespace mirovane
