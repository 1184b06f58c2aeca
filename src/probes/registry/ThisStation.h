#pragma once

#include "platform/Host.h"

namespace mirovane {

/// Who this station is: the computer's name and its default logon user.
StationIdentity thisStation();

} // namespace mirovane
