#pragma once

#include "Plan.h"

class QPainter;

namespace plan {

/// Paints one piece of furniture as seen from above. The painter smooths edges.
void drawItem(QPainter& painter, const Item& item);

} // namespace plan
