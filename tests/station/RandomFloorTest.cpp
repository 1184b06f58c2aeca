#include "model/floor/FloorEdits.h"
#include "tests/station/StationFixture.h"

#include <map>
#include <random>
#include <utility>

namespace mirovane::test {
namespace {

/// What matters of a device here, by its record ID.
struct Plain {
    std::int32_t Type = 0;
    MapPoint Position;
    std::int32_t State = 0;
    std::string Name;

    bool operator==(const Plain&) const = default;
};
using PlainFloor = std::map<std::int32_t, Plain>;

/// A user who clicks about, thinks better of it and again, and a model of the floor that is too simple to be
/// wrong.
class RandomFloorTest : public StationFixture {
protected:
    RandomFloorTest() { plain = floorOf(open(a).doc()); }

    static PlainFloor floorOf(const CMirovaneDoc& document) {
        PlainFloor floor;
        for (std::size_t i = 0; i < document.size(); ++i) {
            const CHardware& record = document.at(i);
            if (record.isDevice())
                floor[record.RecID] = {record.Type, record.Position, record.State, record.Name};
        }
        return floor;
    }

    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(dice);
    }

    std::vector<DeviceKey> someDevices() {
        std::vector<DeviceKey> keys;
        for (const auto& [id, device] : plain)
            if (device.Type < DeviceType::discoveredOffset && below(4) == 0)
                keys.push_back({id, 0});
        return keys;
    }

    void run(const FloorEdit& edit) { ASSERT_FALSE(a.station->edit(edit.request, edit.change).failed()); }

    void addOne() {
        const auto type = static_cast<std::int32_t>(1 + below(13));
        const MapPoint at{static_cast<std::int32_t>(below(900)), static_cast<std::int32_t>(below(700))};
        std::int32_t id = 1;
        while (plain.contains(id))
            ++id;
        plain[id] = {type, at, 0, ""};
        run(addDevice(type, at));
    }
    void moveSome() {
        std::vector<DeviceMove> moves;
        for (const DeviceKey& key : someDevices()) {
            MapPoint& at = plain[key.recID].Position;
            at = {at.x + static_cast<std::int32_t>(below(50)), at.y + 1};
            moves.push_back({key, at});
        }
        if (below(2) == 0)
            return run(moveDevices("Move", moves));
        a.station->edits().liveMove().moveTo(moves);
        a.station->edits().liveMove().finish("Move");
    }
    void deleteSome() {
        auto keys = someDevices();
        std::erase(keys, DeviceKey{othersDevice, 0});
        for (const DeviceKey& key : keys)
            plain.erase(key.recID);
        run(deleteDevices(keys));
    }
    void moveSomeAway() {
        const auto keys = someDevices();
        for (const DeviceKey& key : keys)
            plain[key.recID].Type += DeviceType::discoveredOffset;
        run(moveToMisc(keys));
    }
    void resetSome() {
        const auto keys = someDevices();
        for (const DeviceKey& key : keys)
            plain[key.recID].State = 0;
        run(resetLiveStatus(keys));
    }
    void giveUpAMove() {
        std::vector<DeviceMove> moves;
        for (const DeviceKey& key : someDevices())
            moves.push_back({key, {static_cast<std::int32_t>(below(900)), 5}});
        a.station->edits().liveMove().moveTo(moves);
        a.station->edits().liveMove().giveUp();
    }

    void makeSomeEdit() {
        using Command = void (RandomFloorTest::*)();
        constexpr Command commands[] = {&RandomFloorTest::addOne,       &RandomFloorTest::addOne,
                                        &RandomFloorTest::moveSome,     &RandomFloorTest::deleteSome,
                                        &RandomFloorTest::moveSomeAway, &RandomFloorTest::resetSome,
                                        &RandomFloorTest::giveUpAMove};
        (this->*commands[below(std::size(commands))])();
    }

    /// An edit that changes nothing is not a step.
    void edit() {
        const PlainFloor before = plain;
        const std::size_t steps = a.station->edits().history().steps().size();
        makeSomeEdit();
        if (a.station->edits().history().steps().size() == steps && before == plain)
            return;
        past.push_back(before);
        future.clear();
    }
    void goBack() {
        a.station->undo();
        if (past.empty())
            return;
        future.push_back(std::exchange(plain, past.back()));
        past.pop_back();
    }
    void goForward() {
        a.station->redo();
        if (future.empty())
            return;
        past.push_back(std::exchange(plain, future.back()));
        future.pop_back();
    }

    /// A colleague's remark and what Live Stat found, about a device that nobody deletes. The colleague's
    /// program may know less than the datafile, and so may ours.
    void othersWrite(int number) {
        remark = "remark " + std::to_string(number);
        found = "user " + std::to_string(number);
        a.doc().editInBackground(a.device(othersDevice), [this](CHardware& held) { held.Username = found; });
        ASSERT_TRUE(a.station->saveDatafile().saved()); // or it gives way to what is read
        b.doc().editByUser(b.device(othersDevice), [this](CHardware& held) { held.Comment = remark; });
        ASSERT_TRUE(b.station->saveDatafile().saved());
        if (below(2) == 0)
            pass(10'000);
    }
    void oneCommand() {
        const std::size_t way = below(3);
        if (way == 0)
            goBack();
        else if (way == 1)
            goForward();
        else
            edit();
    }

    static constexpr std::int32_t othersDevice = 1;
    std::string remark, found;
    std::mt19937 dice{20261123};
    PlainFloor plain;
    std::vector<PlainFloor> past, future;
};

TEST_F(RandomFloorTest, AnyRowOfCommandsDoesWhatAPlainModelDoes) {
    for (int i = 0; i < 400; ++i) {
        oneCommand();
        ASSERT_EQ(floorOf(a.doc()), plain) << "after command " << i;
    }
    open(b);
    EXPECT_EQ(floorOf(b.doc()), plain) << "all of it is in the datafile";
}

TEST_F(RandomFloorTest, WhatOthersWriteMeanwhileStays) {
    open(b);
    for (int i = 0; i < 300; ++i) {
        if (below(5) == 0)
            othersWrite(i);
        oneCommand();
        ASSERT_EQ(floorOf(a.doc()), plain) << "after command " << i;
    }
    ASSERT_TRUE(a.station->saveDatafile().saved());
    pass(10'000);
    for (Site* site : {&a, &open(b)}) {
        EXPECT_EQ(floorOf(site->doc()), plain);
        EXPECT_EQ(site->device(othersDevice).Comment, remark);
        EXPECT_EQ(site->device(othersDevice).Username, found);
    }
}

} // namespace
} // namespace mirovane::test
