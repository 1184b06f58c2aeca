#include "model/floor/Hiding.h"

namespace mirovane {

namespace {

constexpr std::uint32_t everyType = (std::uint32_t{1} << static_cast<unsigned>(DeviceType::last)) - 1;

} // namespace

void CHiding::toggleType(std::int32_t type) {
    for (const CHardware* device : selection_.members(CSelection::Scope::Floor))
        if (device->Type == type)
            selection_.remove(*device);
    const auto bit = std::uint32_t{1} << static_cast<unsigned>(type - 1);
    std::uint32_t visible = static_cast<std::uint32_t>(display_.VisibleTypes) ^ bit;
    if ((visible & everyType) == everyType)
        visible = ~std::uint32_t{0}; // nothing is hidden any more, however that came about
    display_.VisibleTypes = static_cast<std::int32_t>(visible);
    write(type, typeHidden(type));
}

void CHiding::hideAll() {
    selection_.none();
    display_.VisibleTypes = 0;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        write(type, true);
}

void CHiding::hideNone() {
    selection_.none();
    display_.FloorMapHidden = false;
    display_.VisibleTypes = -1;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        write(type, false);
}

void CHiding::toggleMap(bool hasMap) {
    display_.FloorMapHidden = !display_.FloorMapHidden && hasMap;
}

void CHiding::write(std::int32_t type, bool hidden) {
    settings_.write(hideSettingName(type), hidden ? 1 : 0);
}

} // namespace mirovane
