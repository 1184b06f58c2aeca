#include "model/format/Datafile.h"
#include "model/records/Criteria.h"
#include "tests/support/Paths.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>

namespace mirovane {
namespace {

std::string readFile(const std::string& name) {
    std::ifstream file(test::sourceFile("demo/" + name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A dotted quad that starts with 127: anything else is a host name or an address off this machine.
bool isLoopback(const std::string& address) {
    unsigned parts[4] = {};
    char rest = 0;
    const int read =
        std::sscanf(address.c_str(), "%3u.%3u.%3u.%3u%c", &parts[0], &parts[1], &parts[2], &parts[3], &rest);
    return read == 4 && parts[0] == 127 && *std::max_element(parts, parts + 4) <= 255;
}

struct MapHeader {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t bitsPerPixel = 0;
};

MapHeader readMapHeader(const std::string& name) {
    const std::string bytes = readFile(name);
    MapHeader header;
    if (bytes.size() < 54 || !bytes.starts_with("BM"))
        return header;
    std::memcpy(&header.width, bytes.data() + 18, 4);
    std::memcpy(&header.height, bytes.data() + 22, 4);
    std::memcpy(&header.bitsPerPixel, bytes.data() + 28, 2);
    return header;
}

class DemoTest : public testing::Test {
protected:
    void SetUp() override {
        auto decoded = Datafile::decode(readFile("office.mv"));
        ASSERT_TRUE(decoded) << decoded.error().sentence;
        records_ = std::move(std::move(decoded).value().records);
        for (const auto& record : records_)
            if (record->isDevice())
                devices_.push_back(record.get());
    }

    const CHardware* special(std::int32_t type) const {
        const auto found = std::find_if(records_.begin(), records_.end(),
                                        [&](const auto& record) { return record->Type == type; });
        return found == records_.end() ? nullptr : found->get();
    }

    Datafile::RecordList records_;
    std::vector<const CHardware*> devices_;
};

TEST_F(DemoTest, NeverLeavesTheMachine) {
    for (const CHardware* device : devices_)
        EXPECT_TRUE(device->IPAddress.empty() || isLoopback(device->IPAddress)) << device->Name;

    const std::set<std::string_view> quiet = {Action::DoNothing, Action::MatchToJack, ""};
    for (const auto& record : records_) {
        if (!isCriteriaRecordType(record->Type))
            continue;
        const CriteriaRow row = criteriaFromRecord(*record);
        if (row.Command == Action::Ping)
            EXPECT_EQ(row.Argument, "$mvI")
                << "a name would be sent to a name server, record type " << record->Type;
        else
            EXPECT_TRUE(quiet.contains(row.Command)) << row.Command << ", record type " << record->Type;
    }
}

TEST_F(DemoTest, ShowsEveryKindAndEveryFate) {
    std::map<std::int32_t, int> onFloor;
    std::map<std::int32_t, int> byPriority;
    std::set<std::int32_t> recIDs;
    int waiting = 0;
    int unreachable = 0;
    for (const CHardware* device : devices_) {
        onFloor[device->Type] += device->onFloor();
        waiting += device->inDiscovered();
        ++byPriority[device->Priority];
        unreachable += device->Type != DeviceType::Jack && device->Type != DeviceType::LocationMarker &&
                       (device->IPAddress.empty() || device->IPAddress == "127.255.255.255");
        EXPECT_TRUE(recIDs.insert(device->RecID).second) << "record ID " << device->RecID << " twice";
        EXPECT_EQ(device->State, DeviceState::Def)
            << device->Name << " must come alive before the user's eyes";
    }
    EXPECT_GE(devices_.size(), 80u);
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        EXPECT_GT(onFloor[type], 0) << typeName(type);
    for (std::int32_t priority = 1; priority <= 5; ++priority)
        EXPECT_GT(byPriority[priority], 0) << "no device of priority " << priority;
    EXPECT_GT(waiting, 0);
    EXPECT_GT(unreachable, 5);
}

TEST_F(DemoTest, LiesOnItsMap) {
    const CHardware* map = special(SpecialType::FloorMapRecord);
    ASSERT_NE(map, nullptr);
    const MapHeader header = readMapHeader(map->Name);
    ASSERT_GE(header.width, 1600);
    ASSERT_GE(header.height, 1000);
    EXPECT_EQ(header.bitsPerPixel, 8);

    constexpr int icon = 32;
    std::set<std::pair<int, int>> taken;
    for (const CHardware* device : devices_) {
        if (!device->onFloor())
            continue;
        const MapPoint at = device->Position;
        EXPECT_TRUE(at.x >= 0 && at.x + icon <= header.width && at.y >= 0 && at.y + icon <= header.height)
            << device->Name;
        EXPECT_TRUE(taken.emplace(at.x, at.y).second) << device->Name << " hides another device";
    }
}

TEST_F(DemoTest, JacksFollowTheDevicesPluggedIntoThem) {
    std::map<std::string, int> plugged;
    std::set<std::string> jacks;
    for (const CHardware* device : devices_)
        if (device->Type == DeviceType::Jack)
            EXPECT_TRUE(jacks.insert(device->ToJack).second) << "jack " << device->ToJack << " twice";
        else if (device->Type != DeviceType::LocationMarker && !device->ToJack.empty())
            ++plugged[device->ToJack];
    int used = 0;
    for (const auto& [jack, count] : plugged) {
        EXPECT_EQ(count, 1) << "several devices in jack " << jack;
        EXPECT_TRUE(jacks.contains(jack)) << "no jack " << jack << " on the floor";
        used += jacks.contains(jack);
    }
    EXPECT_GT(used, 10);
}

TEST_F(DemoTest, HasRemindersLinesAndMarkedAreas) {
    constexpr double dayOfStamps = 46027; // 2026-01-05, when the demo's records were stamped
    int due = 0;
    int later = 0;
    int lines = 0;
    int areas = 0;
    for (const CHardware* device : devices_) {
        if (device->ReminderOn == 1) {
            EXPECT_EQ(device->ReminderDate.status, DateTime::valid);
            EXPECT_FALSE(device->ToDo.empty());
            due += device->ReminderDate.value < dayOfStamps + 30;
            later += device->ReminderDate.value > dayOfStamps + 3000;
        }
        lines += device->SlashDraw + device->BackslashDraw + device->HorzDraw + device->VertDraw;
        if (device->Type == DeviceType::LocationMarker) {
            ++areas;
            EXPECT_GE(std::count(device->ToJack.begin(), device->ToJack.end(), ','), 8) << device->Comment;
            EXPECT_TRUE(device->ToJack.ends_with(',')) << device->Comment;
            EXPECT_NE(device->Comment.find("\r\n"), std::string::npos) << device->Comment;
        }
    }
    EXPECT_EQ(due, 1);
    EXPECT_EQ(later, 1);
    EXPECT_GE(lines, 4);
    EXPECT_EQ(areas, 2);
}

} // namespace
} // namespace mirovane
