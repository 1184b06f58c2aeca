#pragma once

#include "model/Datafile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace mirovane {

/// From a number to the first place in the list where it stands: an open-addressing table of eight bytes a
/// slot, at most two thirds full. A number that stands more than once is marked, because then its first place
/// can only be found again by looking through the list.
class FirstPlaceTable {
public:
    struct Entry {
        std::uint32_t place = 0;
        bool repeated = false;
    };

    void clear();
    void reserve(std::size_t count);
    std::optional<Entry> find(std::int32_t key) const;

    /// Another record with this key stands at `place`.
    void add(std::int32_t key, std::uint32_t place);

    /// Sets or replaces.
    void put(std::int32_t key, Entry entry);
    void erase(std::int32_t key);

    /// The record at `place` went: what stood behind it moved up by one.
    void closeGap(std::uint32_t place);

private:
    struct Slot {
        std::int32_t key = 0;
        std::uint32_t value = 0; ///< 0 = empty, else the place plus one, shifted past the mark
    };

    std::size_t slotFor(std::int32_t key) const;
    Slot& slotToFill(std::int32_t key);
    void grow(std::size_t capacity);

    std::vector<Slot> slots_;
    std::size_t used_ = 0;
};

/// Which IDs from 1 up are taken, with a summary bit for each full word and each full group of words: the
/// lowest free one is three bit scans away, however many are taken.
class FreeIDs {
public:
    /// The document holds fewer records than this, so its smallest free ID always lies below.
    static constexpr std::size_t capacity = 65536;

    void clear();
    void take(std::int32_t id);
    void release(std::int32_t id);
    std::int32_t smallest() const;

private:
    std::array<std::uint64_t, capacity / 64> words_ = {};
    std::array<std::uint64_t, capacity / 64 / 64> fullWords_ = {};
    std::uint64_t fullGroups_ = 0;
};

/// What the document needs to find in constant time. It is told of every change to the list right after it
/// happened. A record ID or special type that stands twice (in a damaged file) is found at its first place;
/// changes around such a number may look through the whole list once.
class RecordIndex {
public:
    void rebuild(const Datafile::RecordList& records);

    /// The last record of the list is new.
    void appended(const Datafile::RecordList& records);

    /// `record` stood at `place` and is gone from the list.
    void removed(const Datafile::RecordList& records, std::size_t place, const CHardware& record);
    void exchanged(const Datafile::RecordList& records, std::size_t a, std::size_t b);

    /// The record at `place` had this Type and RecID before.
    void rekeyed(const Datafile::RecordList& records, std::size_t place, std::int32_t oldType,
                 std::int32_t oldRecID);

    std::optional<std::size_t> device(std::int32_t recID) const;
    std::optional<std::size_t> special(std::int32_t type) const;
    std::int32_t nextRecordID() const { return freeIDs_.smallest(); }
    std::size_t deviceCount() const { return deviceCount_; }

private:
    struct Key {
        bool isDevice;
        std::int32_t number;

        bool operator==(const Key&) const = default;
    };

    static Key keyOf(std::int32_t type, std::int32_t recID);
    static Key keyOf(const CHardware& record) { return keyOf(record.Type, record.RecID); }
    FirstPlaceTable& table(const Key& key) { return key.isDevice ? devices_ : specials_; }
    void add(const Key& key, std::size_t place);
    void drop(const Datafile::RecordList& records, const Key& key);
    void searchAgain(const Datafile::RecordList& records, const Key& key);
    void moved(const Datafile::RecordList& records, const Key& key, std::size_t to);

    FirstPlaceTable devices_;
    FirstPlaceTable specials_;
    FreeIDs freeIDs_;
    std::size_t deviceCount_ = 0;
};

} // namespace mirovane
