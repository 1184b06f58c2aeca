#pragma once

#include "model/Selection.h"
#include "model/Settings.h"

#include <cstdint>

namespace mirovane {

/// The Hide commands: which device types the floor shows, and whether it shows its map. What is hidden cannot
/// be selected, or a command would change devices that nobody sees. Types are written to the user's settings
/// at once; the map is hidden for this run only, and its path stays in the datafile. Main thread; everything
/// given outlives the object.
class CHiding {
public:
    CHiding(DisplaySettings& display, CSettings& settings, CSelection& selection)
        : display_(display), settings_(settings), selection_(selection) {}

    bool typeHidden(std::int32_t type) const { return !display_.typeVisible(type); }
    void toggleType(std::int32_t type);

    /// Every device type; the map stays.
    void hideAll();

    /// Shows everything, the map as well.
    void hideNone();

    bool mapHidden() const { return display_.FloorMapHidden; }

    /// `hasMap`: the datafile names a map. Without one there is nothing to hide.
    void toggleMap(bool hasMap);

private:
    void write(std::int32_t type, bool hidden);

    DisplaySettings& display_;
    CSettings& settings_;
    CSelection& selection_;
};

} // namespace mirovane
