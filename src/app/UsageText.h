#pragma once

#include "app/OptionTable.h"

#include <QString>

#include <span>

namespace mirovane {

/// A line for each option, and more where its help needs them, for a terminal of usual width.
QString optionLines(std::span<const DesktopOption> options);

} // namespace mirovane
