#include "model/RecordIndex.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace mirovane {

namespace {

constexpr std::size_t smallestTable = 256;
constexpr std::size_t prefetchDistance = 16;

/// Record IDs run from 1 upwards: such numbers stay neighbours, so that filling the table runs along memory.
/// Others are spread by their upper half.
std::size_t hashOf(std::int32_t key) {
    const auto number = static_cast<std::uint32_t>(key);
    return number + (number >> 16) * 0x9E3779B1U;
}

std::uint32_t pack(FirstPlaceTable::Entry entry) {
    return (entry.place + 1) << 1 | (entry.repeated ? 1U : 0U);
}

FirstPlaceTable::Entry unpack(std::uint32_t value) {
    return {(value >> 1) - 1, (value & 1U) != 0};
}

} // namespace

// ---- FirstPlaceTable

void FirstPlaceTable::clear() {
    slots_.assign(smallestTable, Slot{});
    used_ = 0;
}

void FirstPlaceTable::reserve(std::size_t count) {
    const std::size_t needed = std::bit_ceil(std::max(smallestTable, count + count / 2 + 1));
    if (needed > slots_.size())
        grow(needed);
}

std::size_t FirstPlaceTable::slotFor(std::int32_t key) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = hashOf(key) & mask;
    while (slots_[at].value != 0 && slots_[at].key != key)
        at = (at + 1) & mask;
    return at;
}

void FirstPlaceTable::grow(std::size_t capacity) {
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(capacity));
    for (const Slot& slot : old) {
        if (slot.value != 0)
            slots_[slotFor(slot.key)] = slot;
    }
}

std::optional<FirstPlaceTable::Entry> FirstPlaceTable::find(std::int32_t key) const {
    if (slots_.empty())
        return std::nullopt;
    const Slot& slot = slots_[slotFor(key)];
    if (slot.value == 0)
        return std::nullopt;
    return unpack(slot.value);
}

FirstPlaceTable::Slot& FirstPlaceTable::slotToFill(std::int32_t key) {
    if (slots_.empty() || (used_ + 1) * 3 > slots_.size() * 2)
        grow(std::max(smallestTable, slots_.size() * 2));
    Slot& slot = slots_[slotFor(key)];
    if (slot.value == 0)
        ++used_;
    return slot;
}

void FirstPlaceTable::add(std::int32_t key, std::uint32_t place) {
    Slot& slot = slotToFill(key);
    if (slot.value == 0)
        slot = {key, pack({place, false})};
    else
        slot.value = pack({std::min(unpack(slot.value).place, place), true});
}

void FirstPlaceTable::put(std::int32_t key, Entry entry) {
    slotToFill(key) = {key, pack(entry)};
}

void FirstPlaceTable::erase(std::int32_t key) {
    if (slots_.empty())
        return;
    const std::size_t mask = slots_.size() - 1;
    std::size_t hole = slotFor(key);
    if (slots_[hole].value == 0)
        return;
    --used_;
    // What stands behind the hole and could stand in it moves up, so that no search ends too early.
    for (std::size_t at = (hole + 1) & mask; slots_[at].value != 0; at = (at + 1) & mask) {
        const std::size_t home = hashOf(slots_[at].key) & mask;
        if (((at - home) & mask) >= ((at - hole) & mask)) {
            slots_[hole] = slots_[at];
            hole = at;
        }
    }
    slots_[hole] = Slot{};
}

void FirstPlaceTable::closeGap(std::uint32_t place) {
    const std::uint32_t lastBefore = pack({place, true});
    for (Slot& slot : slots_) {
        if (slot.value > lastBefore)
            slot.value -= 2;
    }
}

// ---- FreeIDs

void FreeIDs::clear() {
    words_.fill(0);
    fullWords_.fill(0);
    fullGroups_ = 0;
    take(0); // no device has it
}

void FreeIDs::take(std::int32_t id) {
    const auto at = static_cast<std::size_t>(id);
    if (id < 0 || at >= capacity)
        return;
    words_[at / 64] |= std::uint64_t{1} << at % 64;
    if (~words_[at / 64] != 0)
        return;
    const std::size_t word = at / 64;
    fullWords_[word / 64] |= std::uint64_t{1} << word % 64;
    if (~fullWords_[word / 64] == 0)
        fullGroups_ |= std::uint64_t{1} << word / 64;
}

void FreeIDs::release(std::int32_t id) {
    const auto at = static_cast<std::size_t>(id);
    if (id <= 0 || at >= capacity)
        return;
    const std::size_t word = at / 64;
    words_[word] &= ~(std::uint64_t{1} << at % 64);
    fullWords_[word / 64] &= ~(std::uint64_t{1} << word % 64);
    fullGroups_ &= ~(std::uint64_t{1} << word / 64);
}

std::int32_t FreeIDs::smallest() const {
    const auto group = static_cast<std::size_t>(std::countr_one(fullGroups_));
    if (group >= fullWords_.size())
        return static_cast<std::int32_t>(capacity);
    const std::size_t word = group * 64 + static_cast<std::size_t>(std::countr_one(fullWords_[group]));
    return static_cast<std::int32_t>(word * 64) + std::countr_one(words_[word]);
}

// ---- RecordIndex

RecordIndex::Key RecordIndex::keyOf(std::int32_t type, std::int32_t recID) {
    return type > 0 ? Key{true, recID} : Key{false, type};
}

void RecordIndex::add(const Key& key, std::size_t place) {
    if (key.isDevice)
        ++deviceCount_;
    table(key).add(key.number, static_cast<std::uint32_t>(place));
    if (key.isDevice)
        freeIDs_.take(key.number);
}

/// The list no longer holds `key` where it did.
void RecordIndex::drop(const Datafile::RecordList& records, const Key& key) {
    if (key.isDevice)
        --deviceCount_;
    const auto known = table(key).find(key.number);
    if (known && known->repeated)
        searchAgain(records, key);
    else
        table(key).erase(key.number);
    if (key.isDevice && !table(key).find(key.number))
        freeIDs_.release(key.number);
}

void RecordIndex::searchAgain(const Datafile::RecordList& records, const Key& key) {
    std::optional<FirstPlaceTable::Entry> entry;
    for (std::size_t i = 0; i < records.size() && !(entry && entry->repeated); ++i) {
        if (keyOf(*records[i]) != key)
            continue;
        if (entry)
            entry->repeated = true;
        else
            entry = FirstPlaceTable::Entry{static_cast<std::uint32_t>(i), false};
    }
    if (entry)
        table(key).put(key.number, *entry);
    else
        table(key).erase(key.number);
}

void RecordIndex::rebuild(const Datafile::RecordList& records) {
    devices_.clear();
    specials_.clear();
    freeIDs_.clear();
    deviceCount_ = 0;
    devices_.reserve(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        // Records lie far apart; asked for ahead of time, the walk waits for none of them.
        __builtin_prefetch(records[std::min(i + prefetchDistance, records.size() - 1)].get());
        add(keyOf(*records[i]), i);
    }
}

void RecordIndex::appended(const Datafile::RecordList& records) {
    add(keyOf(*records.back()), records.size() - 1);
}

void RecordIndex::removed(const Datafile::RecordList& records, std::size_t place, const CHardware& record) {
    devices_.closeGap(static_cast<std::uint32_t>(place));
    specials_.closeGap(static_cast<std::uint32_t>(place));
    drop(records, keyOf(record));
}

void RecordIndex::exchanged(const Datafile::RecordList& records, std::size_t a, std::size_t b) {
    moved(records, keyOf(*records[a]), a);
    moved(records, keyOf(*records[b]), b);
}

void RecordIndex::moved(const Datafile::RecordList& records, const Key& key, std::size_t to) {
    const auto known = table(key).find(key.number);
    if (known && known->repeated)
        searchAgain(records, key);
    else
        table(key).put(key.number, {static_cast<std::uint32_t>(to), false});
}

void RecordIndex::rekeyed(const Datafile::RecordList& records, std::size_t place, std::int32_t oldType,
                          std::int32_t oldRecID) {
    const Key before = keyOf(oldType, oldRecID);
    const Key after = keyOf(*records[place]);
    if (before == after)
        return;
    drop(records, before);
    add(after, place);
}

std::optional<std::size_t> RecordIndex::device(std::int32_t recID) const {
    const auto known = devices_.find(recID);
    return known ? std::optional<std::size_t>(known->place) : std::nullopt;
}

std::optional<std::size_t> RecordIndex::special(std::int32_t type) const {
    const auto known = specials_.find(type);
    return known ? std::optional<std::size_t>(known->place) : std::nullopt;
}

} // namespace mirovane
