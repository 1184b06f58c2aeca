#pragma once

#include "platform/files/Files.h"

#include <string>

namespace mirovane {

/// What a user is told when his datafile could not be saved: that, why, and what to do about it.
std::string saveFailureText(const FileError& error);

} // namespace mirovane
