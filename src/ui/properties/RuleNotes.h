#pragma once

#include "station/Station.h"
#include "ui/properties/PropertyInput.h"

#include <string_view>

namespace mirovane {

/// Which rule of Live Stat writes this field, and what it found last at this station. Empty where no rule
/// writes it, or where the devices of the form are of several types.
FieldNote ruleNote(const CStation& station, const CPropertiesForm& form, std::string_view field);

} // namespace mirovane
