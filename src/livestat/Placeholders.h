#pragma once

#include "model/Hardware.h"

#include <functional>
#include <string>
#include <string_view>

namespace mirovane {

/// What the expanded text is for.
enum class ExpandMode {
    Argument, ///< of a Live Stat action: field values as they are
    Pattern,  ///< of a Live Stat action: field values are matched literally inside the regular expression
    Command,  ///< line of an External Application: knows $mvW, does not know $mvM
};

/// Replaces $mvN, $mvI, ... (any case) by the device's fields. Of two placeholders written back to back only
/// the first is replaced; datafiles rely on it. Pure, any thread.
///
/// `insertedText` gives what the user typed for $mvW; it is called at each $mvW of a Command and may be empty
/// otherwise.
std::string Expand(std::string_view text, const CHardware& device, ExpandMode mode,
                   const std::function<std::string()>& insertedText = {});

} // namespace mirovane
