#pragma once

#include <QIcon>
#include <QPalette>

#include <optional>

namespace mirovane {

/// A shut padlock, an open one, or for neither a shut one that is only outlined.
QIcon padlockIcon(std::optional<bool> shut, const QPalette& palette);

} // namespace mirovane
