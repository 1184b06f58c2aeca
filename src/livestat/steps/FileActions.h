#pragma once

#include "livestat/steps/ActionRun.h"

namespace mirovane {

// The actions that search files. See CActionRun.

/// The first line of a text file that matches, or one of its fields. A file that has not changed since this
/// row searched it for this device is not searched again.
void searchInTextFile(CActionRun& run);

/// The first name, among those that fit the argument's wildcards, that matches.
void searchForFile(CActionRun& run);

} // namespace mirovane
