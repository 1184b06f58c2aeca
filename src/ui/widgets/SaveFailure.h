#pragma once

#include "platform/files/Files.h"

#include <string>

namespace mirovane {

/// What a user is told when his datafile could not be saved: that, why, and what to do about it.
std::string saveFailureText(const FileError& error);

/// What is written after a colon on the command line and in the log, as a sentence of its own.
std::string asSentence(std::string text);

} // namespace mirovane
