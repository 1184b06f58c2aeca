#include "model/RecordIndex.h"

#include "model/Criteria.h"

#include <gtest/gtest.h>
#include <random>
#include <set>
#include <utility>

namespace mirovane {

namespace {

/// The list as the index is told of it, and what a look through the list says.
class IndexedList {
public:
    IndexedList() { index.rebuild(records); }

    void append(std::int32_t type, std::int32_t recID) {
        records.push_back(std::make_unique<CHardware>());
        records.back()->Type = type;
        records.back()->RecID = recID;
        index.appended(records);
    }
    void remove(std::size_t place) {
        const auto gone = std::move(records[place]);
        records.erase(records.begin() + static_cast<std::ptrdiff_t>(place));
        index.removed(records, place, *gone);
    }
    void exchange(std::size_t a, std::size_t b) {
        std::swap(records[a], records[b]);
        index.exchanged(records, a, b);
    }
    void rekey(std::size_t place, std::int32_t type, std::int32_t recID) {
        const std::int32_t oldType = std::exchange(records[place]->Type, type);
        const std::int32_t oldRecID = std::exchange(records[place]->RecID, recID);
        index.rekeyed(records, place, oldType, oldRecID);
    }

    std::optional<std::size_t> lookThrough(bool devices, std::int32_t number) const {
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (records[i]->isDevice() == devices &&
                number == (devices ? records[i]->RecID : records[i]->Type))
                return i;
        }
        return std::nullopt;
    }
    std::int32_t smallestFree() const {
        std::set<std::int32_t> taken;
        for (const auto& record : records) {
            if (record->isDevice())
                taken.insert(record->RecID);
        }
        std::int32_t id = 1;
        while (taken.contains(id))
            ++id;
        return id;
    }

    Datafile::RecordList records;
    RecordIndex index;
};

void expectSame(const IndexedList& list) {
    for (std::int32_t number = -8; number <= 40; ++number) {
        ASSERT_EQ(list.index.device(number), list.lookThrough(true, number)) << number;
        if (number <= 0) {
            ASSERT_EQ(list.index.special(number), list.lookThrough(false, number)) << number;
        }
    }
    ASSERT_EQ(list.index.nextRecordID(), list.smallestFree());
}

/// Few IDs and few types, so that numbers repeat, vanish and come back all the time.
TEST(RecordIndex, AgreesWithALookThroughTheListAfterAnyChange) {
    std::mt19937 random(20260122);
    const auto pick = [&random](int from, int to) {
        return std::uniform_int_distribution(from, to)(random);
    };
    IndexedList list;
    for (int step = 0; step < 20'000; ++step) {
        const std::int32_t type = pick(0, 3) == 0 ? pick(-6, 0) : pick(1, 13);
        const std::int32_t recID = pick(0, 20) == 0 ? pick(-3, 100'000) : pick(0, 30);
        const auto place =
            list.records.empty() ? 0 : static_cast<std::size_t>(pick(0, 1'000'000)) % list.records.size();
        const auto other =
            list.records.empty() ? 0 : static_cast<std::size_t>(pick(0, 1'000'000)) % list.records.size();
        const int what = pick(0, 9);
        if (list.records.empty() || (what < 4 && list.records.size() < 60))
            list.append(type, recID);
        else if (what < 7)
            list.remove(place);
        else if (what < 9)
            list.exchange(place, other);
        else
            list.rekey(place, type, recID);
        ASSERT_NO_FATAL_FAILURE(expectSame(list)) << "step " << step;
    }
}

TEST(RecordIndex, HoldsAFullDatafile) {
    IndexedList list;
    for (std::size_t i = 1; i <= Datafile::maxRecords; ++i)
        list.append(1, static_cast<std::int32_t>(i));
    EXPECT_EQ(list.index.nextRecordID(), 65'535);
    EXPECT_EQ(list.index.deviceCount(), Datafile::maxRecords);
    list.remove(4'095);
    EXPECT_EQ(list.index.nextRecordID(), 4'096);
    EXPECT_EQ(list.index.device(65'534), 65'532U);
    RecordIndex fresh;
    fresh.rebuild(list.records);
    for (std::int32_t id = 1; id <= 65'534; ++id)
        ASSERT_EQ(fresh.device(id), list.index.device(id));
}

} // namespace

} // namespace mirovane
