#pragma once

#include "model/Document.h"
#include "model/MessageLog.h"
#include "model/SaveReport.h"
#include "model/edit/EditDoor.h"
#include "station/DatafileWatch.h"
#include "station/Features.h"
#include "station/KeptState.h"
#include "station/LiveMove.h"
#include "station/Pauses.h"
#include "station/StationNews.h"

#include <functional>
#include <optional>

namespace mirovane {

class CStation;

/// What a user changes, with all that must happen around it at a station: Live Stat finishes with the
/// devices, the watch rests, the edit is saved and told. Main thread; a part of the station.
class CUserEdits final : private EditDoorHost {
public:
    /// All of it outlives the edits.
    struct Parts {
        CMirovaneDoc& document;
        CDatafileWatch& watch;
        CFeatures& features;
        KeptState& kept;
        CPauses& pauses;
        CStationNews& news;
        CMessageLog& log;
    };

    CUserEdits(CStation& station, const Parts& parts);

    SaveReport edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change) {
        return door_.edit(request, change);
    }

    /// Takes the user's latest edit back, or makes the one that was undone last again, and saves; see
    /// CEditDoor. What another station has saved is read first. The log names what stays, because somebody
    /// else has written it since.
    SaveReport undo();
    SaveReport redo();

    /// The user's latest edits, and what is undone and redone next.
    const CEditHistory& history() const { return door_.history(); }

    /// Devices that follow the pointer.
    CLiveMove& liveMove() { return liveMove_; }

    /// To the end of the list, where nothing is drawn over it. Stays where it is while the device at the end
    /// is being checked: Live Stat goes through the list. Saved with the next save.
    void bringToFront(const CHardware& device);

    // ---- for the station

    CEditDoor& door() { return door_; }

    /// What another station has saved must be seen to stay: before an edit is undone or a copy is made.
    void readNews();

    /// Another datafile.
    void forget();

private:
    // EditDoorHost
    void beforeEdit(const EditRequest& request) override;
    SaveReport afterEdit(const EditRequest& request, bool changed) override;
    void historyChanged() override;

    void waitForLiveStat();

    CStation& station_;
    Parts parts_;
    CEditDoor door_;
    CLiveMove liveMove_;
    std::optional<CPause> pause_; ///< while an edit is being made
};

} // namespace mirovane
