#pragma once

#include "livestat/steps/ActionRun.h"

namespace mirovane {

// The actions whose result is one value, read from the document or from another computer. See CActionRun.

/// The state of what is plugged into the jack.
void matchToJack(CActionRun& run);

/// The argument itself.
void setValue(CActionRun& run);

/// A value that was read and matches the row's pattern.
void readRegistry(CActionRun& run);
void getFromAgent(CActionRun& run);

/// Who is logged on to the device. A user who logged off stays visible in brackets.
void lookUpUser(CActionRun& run);

} // namespace mirovane
