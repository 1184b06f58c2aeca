#include "ui/floor/geometry/FloorView.h"

#include <algorithm>
#include <cmath>

namespace mirovane {

bool FloorView::shows(MapPoint position) const {
    if (within && !within->holds(position))
        return false;
    return paper || insideCull(toScaled(position, zoom.ZoomPercent), origin, client);
}

int FloorView::px(std::int64_t logical) const {
    const double limit = coordinateLimit;
    // Halves go up on both sides of 0, or what is scrolled past the corner would change its shape.
    return static_cast<int>(
        std::clamp(std::floor(static_cast<double>(logical) * ratio + 0.5), -limit, limit));
}

QRect FloorView::pxRect(QPoint corner, QSize size) const {
    const int left = px(corner.x());
    const int top = px(corner.y());
    const int right = px(std::int64_t{corner.x()} + size.width());
    const int bottom = px(std::int64_t{corner.y()} + size.height());
    return {left, top, right - left, bottom - top};
}

} // namespace mirovane
