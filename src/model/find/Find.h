#pragma once

#include "model/FindState.h"
#include "model/Selection.h"
#include "model/find/FindSettings.h"

#include <cstddef>
#include <string>

namespace mirovane {

/// The search that Find, Find Next and Find Reminder Due share: its settings, and the place in the list at
/// which the next one starts. Main thread; document and selection outlive it.
class CFind {
public:
    CFind(const CMirovaneDoc& document, CSelection& selection) : document_(document), selection_(selection) {}

    const FindSettings& settings() const { return settings_; }

    /// As the dialog leaves them.
    void setSettings(FindSettings settings);

    /// Which devices of a search count.
    enum class From {
        Floor,         ///< those of Discovered/Misc when the settings include them
        DiscoveredMisc ///< the user searches in that window: its devices always count
    };

    /// Selects the next device that fits, round the end of the list, and nothing else; notes in `state` what
    /// the floor shows of it. Null, with nothing selected, when no device fits.
    const CHardware* next(FindMode mode, FindState& state, From from = From::Floor);
    const CHardware* next(FindState& state) { return next(settings_.mode(), state); }

private:
    void deselectAll();

    const CMirovaneDoc& document_;
    CSelection& selection_;
    FindSettings settings_;
    std::string textBefore_; ///< of the previous search
    std::size_t FindNextIndex_ = 0;
};

} // namespace mirovane
