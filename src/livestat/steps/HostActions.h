#pragma once

#include "livestat/steps/ActionRun.h"

namespace mirovane {

// The actions that ping hosts and look up their names and addresses. See CActionRun.

/// One token of the argument after the other until one answers: a name may be unknown to the resolver while
/// its address lives.
void pingHosts(CActionRun& run);

/// Every token of the argument is looked up and the last one decides; without a token the field keeps its
/// text.
void lookUpAddresses(CActionRun& run);
void lookUpNames(CActionRun& run);

} // namespace mirovane
