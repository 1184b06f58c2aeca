#pragma once

#include "model/DeviceKey.h"

#include <QMimeData>

#include <memory>
#include <vector>

namespace mirovane {

/// Devices on their way from the Discovered/Misc window to the floor, for this window's own floor only:
/// another program has other devices under the same record IDs.
std::unique_ptr<QMimeData> draggedDevices(const std::vector<DeviceKey>& devices);

/// Empty when something else is dragged, or it comes from another program.
std::vector<DeviceKey> draggedDevices(const QMimeData* data);

} // namespace mirovane
