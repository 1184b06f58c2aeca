#pragma once

#include "livestat/schedule/PlaceSet.h"
#include "model/Document.h"
#include "platform/Clock.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_set>

namespace mirovane {

/// Decides which device Live Stat checks next and counts the loops over the list. Main thread only.
///
/// The rule is a walk: the cursor goes from record to record, round and round, and stops at the first device
/// that qualifies and that no job slot holds. At 65,000 records, a thousand slots and a priority that few
/// devices have, that walk would read the whole list a thousand times a run. Instead each priority threshold
/// keeps the set of places that qualify, and the cursor jumps; where the jump passes the start position, the
/// loop is counted just as the walk would. The sets follow edits, appended records and marks at once; a
/// removal or exchange rebuilds them at the next pick.
class CDevicePicker final : public DocumentObserver {
public:
    static constexpr int lowestPriority = 1;
    static constexpr int highestPriority = 5;

    CDevicePicker(CMirovaneDoc& document, const Clock& clock);
    ~CDevicePicker() override;
    CDevicePicker(const CDevicePicker&) = delete;
    CDevicePicker& operator=(const CDevicePicker&) = delete;

    /// Whether devices of the Discovered/Misc window are checked, too.
    void setIncludeMisc(bool include);

    /// Live Stat goes on: loops count from 0, the first one begins behind the cursor.
    void startLoops();

    /// The cursor goes back in front of the list: another document.
    void rewind() { cursor_.reset(); }

    /// The next device whose priority reaches the threshold, at most once round the list; null when there is
    /// none.
    const CHardware* pickByPriority();

    /// The next device that is marked for Live Stat Now; counts no loops.
    const CHardware* pickMarked();

    /// A held device is not picked until it is released.
    void hold(std::int32_t recID);
    void release(std::int32_t recID);
    bool holds(std::int32_t recID) const { return held_.contains(recID); }
    std::size_t heldCount() const { return held_.size(); }
    std::vector<std::int32_t> heldDevices() const { return {held_.begin(), held_.end()}; }

    int threshold() const { return threshold_; }
    int loops() const { return loops_; }
    std::int64_t lastLoopSeconds() const { return lastLoop_.count(); }

    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void flagsChanged(const CHardware& record) override;
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override { stale_ = true; }

private:
    void refresh();
    void file(std::size_t place, const CHardware& record);
    void refile(std::int32_t recID);
    bool pollable(const CHardware& record) const;
    const CHardware* findFrom(const CPlaceSet& set, std::size_t from, std::size_t count);
    const CHardware* arriveAtStart(std::size_t start);
    std::size_t behindCursor() const;
    void completeLoop();

    CMirovaneDoc& document_;
    const Clock& clock_;
    bool includeMisc_ = true;

    std::array<CPlaceSet, highestPriority + 1> atLeast_; ///< by threshold: qualifies, and no slot holds it
    CPlaceSet marked_;                                   ///< marked, of a checked type, and no slot holds it
    std::uint64_t revision_ = 0;                         ///< of the list that the sets describe
    bool stale_ = true;
    std::unordered_set<std::int32_t> held_;

    std::optional<std::size_t> cursor_; ///< place picked last
    std::size_t start_ = 0;
    bool beforeFirstLoop_ = true; ///< the cursor has not reached the start position for the first time yet
    int threshold_ = highestPriority;
    int loops_ = 0;
    std::chrono::steady_clock::time_point loopBegan_{};
    std::chrono::seconds lastLoop_{0};
};

} // namespace mirovane
