#include "model/RecordIndex.h"

#include "model/records/Criteria.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
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
        for (std::size_t i = 0; i < records.size(); ++i)
            if (records[i]->isDevice() == devices &&
                number == (devices ? records[i]->RecID : records[i]->Type))
                return i;
        return std::nullopt;
    }
    std::int32_t smallestFree() const {
        std::set<std::int32_t> taken;
        for (const auto& record : records)
            if (record->isDevice())
                taken.insert(record->RecID);
        std::int32_t id = 1;
        while (taken.contains(id))
            ++id;
        return id;
    }

    Datafile::RecordList records;
    CRecordIndex index;
};

void expectSame(const IndexedList& list) {
    for (std::int32_t number = -8; number <= 40; ++number) {
        ASSERT_EQ(list.index.device(number), list.lookThrough(true, number)) << number;
        if (number <= 0)
            ASSERT_EQ(list.index.special(number), list.lookThrough(false, number)) << number;
    }
    ASSERT_EQ(list.index.nextRecordID(), list.smallestFree());
    std::map<std::int32_t, std::size_t> seen;
    for (std::size_t place = 0; place < list.records.size(); ++place) {
        if (!list.records[place]->isDevice())
            continue;
        const std::int32_t recID = list.records[place]->RecID;
        const std::size_t twin = seen[recID]++;
        ASSERT_EQ(list.index.twinOf(list.records, place), twin) << recID;
        ASSERT_EQ(list.index.device(list.records, recID, twin), place) << recID;
    }
    for (const auto& [recID, count] : seen)
        ASSERT_EQ(list.index.device(list.records, recID, count), std::nullopt) << recID;
    ASSERT_EQ(list.index.deviceCount(),
              static_cast<std::size_t>(
                  std::ranges::count_if(list.records, [](const auto& held) { return held->isDevice(); })));
}

/// Few IDs and few types, so that numbers repeat, vanish and come back all the time.
TEST(RecordIndexTest, AgreesWithALookThroughTheListAfterAnyChange) {
    std::mt19937 random(20260122);
    const auto pick = [&random](int from, int to) {
        return std::uniform_int_distribution(from, to)(random);
    };
    IndexedList list;
    for (int step = 0; step < 5'000; ++step) {
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
        if (step % 500 == 0) {
            list.records.erase(list.records.begin(), list.records.begin() + list.records.size() / 2);
            list.index.rebuild(list.records);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(list)) << "step " << step;
    }
}

} // namespace

} // namespace mirovane
