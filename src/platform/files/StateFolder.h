#pragma once

#include "platform/files/FileCalls.h"

#include <string>

namespace mirovane {

/// $XDG_STATE_HOME/mirovane, else ~/.local/state/mirovane, else a folder of this user below the temporary
/// one.
std::string defaultStateFolder();

/// That one, or one within `configFolder` where this program was given its own for the user's settings.
std::string stateFolderFor(const std::string& configFolder);

/// Every part of the path that is missing, for this user only. False, and errno, when that is not possible or
/// the folder is not this user's.
bool makeStateFolder(CFileCalls& calls, const std::string& folder);

/// Where a user has no home, the folder lies in one that all write to. Whoever made it before him could put
/// files there that a later program would take for his own.
bool isOwnFolder(CFileCalls& calls, const std::string& folder);

} // namespace mirovane
