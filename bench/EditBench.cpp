// Undo of a large edit against the edit itself, without a save: 10,000 of 65,000 devices.
// usage: EditBench [ROUNDS]

#include "bench/support/BigFloor.h"
#include "bench/support/PairedRounds.h"
#include "model/edit/EditDoor.h"

#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace mirovane::bench {

namespace {

constexpr std::int32_t deviceCount = 65'000;
constexpr std::size_t chosenCount = 10'000;

class CQuietHost final : public EditDoorHost {
    void beforeEdit(const EditRequest&) override {}
    SaveReport afterEdit(const EditRequest&, bool) override { return {}; }
};

struct Floor {
    Floor() {
        fillBigFloor(doc, deviceCount);
        doc.allSaved(); // from now on the journal keeps what changes
    }

    void require(std::size_t devices) const {
        if (doc.deviceCount() != devices)
            throw std::runtime_error("the edit or its undo was left out");
    }
    void remove() {
        EditRequest request{EditRequest::Kind::Delete, "Delete", {}};
        for (const auto& record : doc.records())
            if (record->isDevice() && record->RecID % 6 == 0 && request.devices.size() < chosenCount)
                request.devices.push_back({record->RecID, 0});
        door.edit(request, [&](CMirovaneDoc& document) { document.removeDevices(request.devices); });
        require(deviceCount - chosenCount);
    }
    void undo() {
        door.undo();
        require(deviceCount);
    }

    CSystemClock clock;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"bench", "bench"}};
    CQuietHost host;
    CEditDoor door{doc, log, host};
};

void run(std::size_t rounds) {
    printHeader();
    Floor floor;
    const auto undo = [&floor] {
        floor.remove();
        return millisecondsOf([&floor] { floor.undo(); });
    };
    const auto remove = [&floor] {
        const double time = millisecondsOf([&floor] { floor.remove(); });
        floor.undo();
        return time;
    };
    printRow("G1", "undo of a delete of 10,000 : the delete", measurePaired(undo, remove, rounds), 3);
}

} // namespace

} // namespace mirovane::bench

int main(int argc, char** argv) {
    try {
        mirovane::bench::run(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 15);
    } catch (const std::exception& failure) {
        std::cerr << "EditBench: " << failure.what() << '\n';
        return 1;
    }
}
