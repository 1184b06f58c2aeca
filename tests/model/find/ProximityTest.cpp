#include "model/find/Proximity.h"

#include "tests/model/DocumentFixture.h"

#include <cstdlib>
#include <numeric>
#include <random>
#include <utility>

namespace mirovane {

namespace {

bool floorDevice(const ProximityRecord& record) {
    return record.Type > 0 && record.Type < 1000;
}

bool miscDevice(const ProximityRecord& record) {
    return record.Type > 999;
}

/// The rule word for word: every later record is looked at, and records are exchanged one pair at a time.
struct PlainRule {
    std::vector<ProximityRecord> records;
    std::vector<std::size_t> order;

    void exchange(std::size_t a, std::size_t b) {
        std::swap(records[a], records[b]);
        std::swap(order[a], order[b]);
    }

    std::int64_t distance(std::size_t a, std::size_t b) const {
        const MapPoint p = records[a].Position;
        const MapPoint q = records[b].Position;
        return (std::abs(std::int64_t{p.x} - q.x) + std::abs(std::int64_t{p.y} - q.y)) / 2;
    }

    void chain(bool (*belongs)(const ProximityRecord&)) {
        for (std::size_t i = 0; i + 2 < records.size(); ++i) {
            if (!belongs(records[i]))
                continue;
            std::int64_t best = -1;
            std::size_t target = 0;
            for (std::size_t j = i + 1; j < records.size(); ++j) {
                if (!belongs(records[j]))
                    continue;
                const std::int64_t found = distance(i, j);
                if (best < 0) {
                    target = j;
                    best = found;
                } else if (found < best) {
                    exchange(target, j);
                    best = found;
                }
            }
        }
    }

    explicit PlainRule(const std::vector<ProximityRecord>& given) : records(given), order(given.size()) {
        std::iota(order.begin(), order.end(), std::size_t{0});
        for (std::size_t i = 0; i + 2 < records.size(); ++i)
            for (std::size_t j = i + 1; j < records.size(); ++j)
                if (miscDevice(records[i]) && floorDevice(records[j]))
                    exchange(i, j);
        chain(floorDevice);
        chain(miscDevice);
    }
};

/// Small maps have many equal distances; extreme ones the coordinates that a damaged file may hold.
std::vector<ProximityRecord> randomList(std::mt19937& random, int span) {
    std::uniform_int_distribution<std::int32_t> coordinate(-span, span);
    std::vector<ProximityRecord> records(random() % 300);
    for (ProximityRecord& record : records) {
        const auto kind = random() % 10;
        record.Type = kind == 0 ? -1 - static_cast<int>(random() % 5) : 1 + static_cast<int>(random() % 13);
        if (kind > 6)
            record.Type += 1000;
        record.Position = {coordinate(random), coordinate(random)};
    }
    return records;
}

TEST(ProximityTest, TheOrderIsThatOfThePlainRule) {
    std::mt19937 random(12);
    for (const int span : {2, 12, 4000, 2'147'483'647})
        for (int round = 0; round < 60; ++round) {
            const auto records = randomList(random, span);
            ASSERT_EQ(proximityOrder(records), PlainRule(records).order) << span << " " << round;
        }
}

class ProximityDocumentTest : public test::DocumentFixture {};

TEST_F(ProximityDocumentTest, TheDocumentFollowsAndKeepsItsSpecialRecords) {
    makeFloor(5);
    const std::int32_t places[] = {0, 500, 10, 400, 20};
    for (std::int32_t recID = 1; recID <= 5; ++recID)
        doc.edit(*doc.findDevice(recID), [&](CHardware& device) {
            device.Position = {places[recID - 1], 0};
            if (recID == 3)
                device.Type += DeviceType::discoveredOffset;
        });
    std::vector<std::int32_t> special;
    for (const auto& record : doc.records())
        if (!record->isDevice())
            special.push_back(record->Type);
    EXPECT_EQ(groupByProximity(doc), 4U);
    std::vector<std::int32_t> devices, specialAfter;
    for (const auto& record : doc.records())
        record->isDevice() ? devices.push_back(record->RecID) : specialAfter.push_back(record->Type);
    EXPECT_EQ(devices, (std::vector<std::int32_t>{1, 5, 4, 3, 2})) << "the last two places have no turn";
    EXPECT_EQ(specialAfter, special);
    EXPECT_EQ(groupByProximity(doc), 0U);
}

} // namespace

} // namespace mirovane
