#pragma once

#include "model/Document.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/paint/FloorViewState.h"

#include <optional>
#include <span>

namespace mirovane {

/// Which devices a frame shows, and in which order: the devices near the frame in list order, kept while
/// neither the frame nor the document moved anything. Main thread.
class CFloorScene {
public:
    CFloorScene(const CMirovaneDoc& document, const DisplaySettings& display, const CFloorIndex& index)
        : document_(document), display_(display), index_(index) {}

    /// Floor devices that start inside the frame or its margin, in list order, and the Location Markers
    /// whose area is shown wherever they are. Valid until the document changes or the next call.
    const CFloorIndex::Devices& devices(const FloorViewState& state);

    static bool onTop(const CHardware& device) { return device.Selected || device.ShowAll; }

    /// Drawn with those neither selected nor hovered: below.
    bool inFirstPass(const CHardware& device, const FloorViewState& state) const;

    /// Drawn with the selected and hovered ones: on top.
    bool inSecondPass(const CHardware& device, const FloorViewState& state) const;

private:
    struct Key {
        FloorView view;
        std::int32_t SelectedMarker = 0;
        std::int32_t MarkingMarker = 0;
        std::uint64_t revision = 0;
        std::uint64_t orderRevision = 0;

        bool operator==(const Key&) const = default;
    };

    bool wanted(const CHardware& device) const;
    void collect(const Key& key, const FloorViewState& state);

    const CMirovaneDoc& document_;
    const DisplaySettings& display_;
    const CFloorIndex& index_;
    std::optional<Key> key_;
    CFloorIndex::Devices devices_;
};

} // namespace mirovane
