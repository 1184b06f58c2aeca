#pragma once

#include "model/SaveReport.h"
#include "model/edit/EditDoor.h"
#include "model/floor/Arrange.h"
#include "station/DatafileWatch.h"

#include <map>
#include <span>
#include <string_view>
#include <vector>

namespace mirovane {

/// Devices that follow the pointer, or an arrow key that is held: they move as the user looks on, and become
/// one edit when he lets go. Meanwhile the datafile is not read again, or the devices would jump under his
/// hand, and nothing of the move is the user's edit yet: giving it up leaves no trace. Devices are known by
/// their record IDs, so a move survives records that were read again all the same. Main thread; the station
/// owns it.
class CLiveMove final : private DocumentObserver {
public:
    CLiveMove(CMirovaneDoc& document, CDatafileWatch& watch, CEditDoor& door);
    ~CLiveMove() override;
    CLiveMove(const CLiveMove&) = delete;
    CLiveMove& operator=(const CLiveMove&) = delete;

    /// A button or a key went down: no reload until it goes up, whatever it becomes.
    void hold();
    bool held() const { return held_; }

    /// From now on they are there. Holds.
    void moveTo(std::span<const DeviceMove> moves);

    /// Devices are elsewhere than they were.
    bool underWay() const { return !origins_.empty(); }

    /// What moved becomes one edit, "Move 12 devices", and is saved; nothing to save where nothing moved.
    SaveReport finish(std::string_view verb);

    /// Every device goes back to where it was.
    void giveUp();

    /// Another datafile: whatever was held is gone.
    void forget();

private:
    struct Less {
        bool operator()(const DeviceKey& a, const DeviceKey& b) const {
            return a.recID != b.recID ? a.recID < b.recID : a.twin < b.twin;
        }
    };

    // DocumentObserver
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;

    void place(const DeviceMove& move);
    void release();

    CMirovaneDoc& document_;
    CDatafileWatch& watch_;
    CEditDoor& door_;
    std::map<DeviceKey, MapPoint, Less> origins_; ///< of each device that was moved
    bool held_ = false;
};

} // namespace mirovane
