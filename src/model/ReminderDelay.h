#pragma once

#include <cstdint>

namespace mirovane {

/// For how long a due reminder is left alone.
enum class ReminderDelay : std::uint8_t { TenMinutes, Hour, UntilTomorrow };

} // namespace mirovane
