#include "station/LiveMove.h"

#include "model/floor/FloorEdits.h"

#include <functional>
#include <utility>

namespace mirovane {

CLiveMove::CLiveMove(CMirovaneDoc& document, CDatafileWatch& watch, CEditDoor& door)
    : document_(document), watch_(watch), door_(door) {
    document_.addObserver(*this);
}

CLiveMove::~CLiveMove() {
    document_.removeObserver(*this);
}

/// Not while a reload waits: it would be put off behind the move, and the move end on records of before.
void CLiveMove::hold() {
    if (held_ || watch_.busy())
        return;
    held_ = true;
    watch_.beginEdit();
}

void CLiveMove::release() {
    if (std::exchange(held_, false))
        watch_.endEdit();
}

/// In the background, because the move is not the user's edit before he lets go.
void CLiveMove::place(const DeviceMove& move) {
    const CHardware* device = document_.findDevice(move.device);
    if (device && device->Position != move.to)
        document_.editInBackground(*device, [&move](CHardware& held) { held.Position = move.to; });
}

void CLiveMove::moveTo(std::span<const DeviceMove> moves) {
    hold();
    for (const DeviceMove& move : moves) {
        if (const CHardware* device = document_.findDevice(move.device))
            origins_.try_emplace(move.device, device->Position);
        place(move);
    }
}

namespace {

/// Whatever comes in between.
class CAtEnd {
public:
    explicit CAtEnd(std::function<void()> work) : work_(std::move(work)) {}
    ~CAtEnd() { work_(); }
    CAtEnd(const CAtEnd&) = delete;
    CAtEnd& operator=(const CAtEnd&) = delete;

private:
    std::function<void()> work_;
};

} // namespace

/// The devices go back first, so that the edit's before-image is where they came from.
SaveReport CLiveMove::finish(std::string_view verb) {
    const CAtEnd released([this] { release(); });
    std::vector<DeviceMove> moves;
    for (const auto& [key, origin] : origins_) {
        const CHardware* device = document_.findDevice(key);
        if (device && device->Position != origin)
            moves.push_back({key, device->Position});
    }
    for (const auto& [key, origin] : std::exchange(origins_, {}))
        place({key, origin});
    SaveReport report;
    if (!moves.empty()) {
        const FloorEdit edit = moveDevices(verb, std::move(moves));
        report = door_.edit(edit.request, edit.change);
    }
    return report;
}

void CLiveMove::giveUp() {
    for (const auto& [key, origin] : std::exchange(origins_, {}))
        place({key, origin});
    release();
}

void CLiveMove::forget() {
    origins_.clear();
    held_ = false;
}

void CLiveMove::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    auto moved = origins_.extract({oldRecID, 0});
    if (moved.empty())
        return;
    moved.key() = {newRecID, 0};
    origins_.insert(std::move(moved));
}

} // namespace mirovane
