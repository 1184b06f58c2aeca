#include "livestat/schedule/DevicePicker.h"

#include "platform/files/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/NewFloor.h"

#include <gtest/gtest.h>
#include <random>
#include <set>
#include <vector>

namespace mirovane {

namespace {

class DevicePickerTest : public testing::Test {
protected:
    test::FakeClock clock;
    CPosixFiles files;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"host", "user"}};
    CDevicePicker picker{doc, clock};

    std::int32_t add(std::int32_t type, std::int32_t priority) {
        return doc
            .addDevice(
                type, [priority](CHardware& device) { device.Priority = priority; })
            ->RecID;
    }
    std::vector<std::int32_t> picks(int count) {
        std::vector<std::int32_t> recIDs;
        for (int i = 0; i < count; ++i) {
            const CHardware* device = picker.pickByPriority();
            recIDs.push_back(device ? device->RecID : 0);
        }
        return recIDs;
    }
};

/// The rule as people say it: one record after the other.
class WordedWalk {
public:
    explicit WordedWalk(const CMirovaneDoc& doc) : doc_(doc) {}

    void startLoops() {
        start_ = cursor_ + 1 < size() ? cursor_ + 1 : 0;
        threshold = 5;
        loops = 0;
        first_ = true;
    }

    std::int32_t pick(bool now) {
        if (start_ >= size())
            start_ = 0;
        for (int i = 0; i < size(); ++i) {
            cursor_ = cursor_ + 1 < size() ? cursor_ + 1 : 0;
            if (!now && cursor_ == start_ && !std::exchange(first_, false)) {
                ++loops;
                threshold = threshold == 1 ? 5 : threshold - 1;
            }
            const CHardware& record = doc_.at(static_cast<std::size_t>(cursor_));
            const bool typed =
                record.Type >= 1 && (misc || record.Type <= 999) && record.Type != 13 && record.Type != 1013;
            const bool wanted = now ? record.LSNowMark != 0 : record.Priority >= threshold;
            if (typed && wanted && !held.contains(record.RecID))
                return record.RecID;
        }
        return 0;
    }

    int threshold = 5;
    int loops = 0;
    bool misc = true;
    std::set<std::int32_t> held;

private:
    int size() const { return static_cast<int>(doc_.size()); }

    const CMirovaneDoc& doc_;
    int cursor_ = -1;
    int start_ = 0;
    bool first_ = true;
};

TEST_F(DevicePickerTest, PriorityOneIsCheckedInEveryFifthLoopOnly) {
    test::newFloor(doc);
    for (const std::int32_t priority : {5, 1, 4, 3, 2})
        add(DeviceType::Computer, priority);
    picker.startLoops();
    EXPECT_EQ(picks(15), (std::vector<std::int32_t>{1, 1, 3, 1, 3, 4, 1, 3, 4, 5, 1, 2, 3, 4, 5}));
    EXPECT_EQ(picker.loops(), 4);
    clock.advance(std::chrono::seconds(7));
    EXPECT_EQ(picks(1), std::vector<std::int32_t>{1});
    EXPECT_EQ(picker.threshold(), 5);
    EXPECT_EQ(picker.loops(), 5);
    EXPECT_EQ(picker.lastLoopSeconds(), 7);
}

TEST_F(DevicePickerTest, NeverPicksMarkersOrWhatASlotHolds) {
    add(DeviceType::LocationMarker, 5);
    add(DeviceType::LocationMarker + DeviceType::discoveredOffset, 5);
    EXPECT_EQ(picks(1), std::vector<std::int32_t>{0});
    const std::int32_t misc = add(DeviceType::Printer + DeviceType::discoveredOffset, 5);
    EXPECT_EQ(picks(2), (std::vector<std::int32_t>{misc, misc}));
    picker.hold(misc);
    EXPECT_EQ(picks(1), std::vector<std::int32_t>{0});
    picker.release(misc);
    picker.setIncludeMisc(false);
    EXPECT_EQ(picks(1), std::vector<std::int32_t>{0});
}

class RandomWalksTest : public DevicePickerTest, public testing::WithParamInterface<unsigned> {
protected:
    std::mt19937 random{GetParam()};
    WordedWalk walk{doc};

    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random); }
    std::size_t place() { return static_cast<std::size_t>(upTo(static_cast<int>(doc.size()) - 1)); }
    std::int32_t type() { return upTo(13) + 1 + (upTo(2) == 0 ? DeviceType::discoveredOffset : 0); }

    void edit() {
        const CHardware& record = doc.at(place());
        switch (upTo(record.isDevice() ? 6 : 1)) {
        case 0:
            add(type(), upTo(6));
            break;
        case 1:
            doc.exchange(place(), place());
            break;
        case 2:
            doc.remove(record);
            break;
        case 3:
            doc.edit(record, [this](CHardware& device) { device.Priority = upTo(6); });
            break;
        case 4:
            doc.edit(record, [this](CHardware& device) { device.Type = type(); });
            break;
        default:
            doc.setLSNowMark(record, upTo(1) == 0);
        }
    }

    void letGoOfSome() {
        for (auto it = walk.held.begin(); it != walk.held.end();) {
            if (upTo(2) != 0) {
                ++it;
                continue;
            }
            picker.release(*it);
            it = walk.held.erase(it);
        }
    }
};

TEST_P(RandomWalksTest, JumpsExactlyAsTheWalkWalks) {
    for (int i = upTo(200); i >= 0; --i)
        add(type(), upTo(6));
    picker.startLoops();
    walk.startLoops();
    for (int step = 0; step < 4000; ++step) {
        const bool now = step % 700 > 600;
        const CHardware* jumped = now ? picker.pickMarked() : picker.pickByPriority();
        const std::int32_t walked = walk.pick(now);
        ASSERT_EQ(jumped ? jumped->RecID : 0, walked) << "step " << step;
        ASSERT_EQ(picker.loops(), walk.loops) << "step " << step;
        ASSERT_EQ(picker.threshold(), walk.threshold);
        if (walked != 0 && upTo(1) == 0) {
            picker.hold(walked);
            walk.held.insert(walked);
        }
        if (upTo(20) == 0)
            letGoOfSome();
        if (upTo(10) == 0 && doc.size() > 3)
            edit();
        if (upTo(200) == 0)
            picker.setIncludeMisc(walk.misc = !walk.misc);
        if (upTo(500) == 0) {
            picker.startLoops();
            walk.startLoops();
        }
    }
    EXPECT_GT(walk.loops, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomWalksTest, testing::Range(1U, 25U));

} // namespace

} // namespace mirovane
