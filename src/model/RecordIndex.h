#pragma once

#include "model/format/Datafile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>

namespace mirovane {

/// From a number to the first place in a list where it is, and whether it is in the list more than once: then
/// only a look through the list finds the other places, or the new first one when this one goes.
class CFirstPlaceTable {
public:
    struct Entry {
        std::uint32_t place = 0;
        bool repeated = false;
    };

    void clear() { entries_.clear(); }
    void reserve(std::size_t count) { entries_.reserve(count); }
    std::optional<Entry> find(std::int32_t key) const;

    /// One more record with this key is at `place`.
    void add(std::int32_t key, std::uint32_t place);

    /// Sets or replaces.
    void put(std::int32_t key, Entry entry) { entries_.insert_or_assign(key, entry); }
    void erase(std::int32_t key) { entries_.erase(key); }

    /// The record at `place` went: what was behind it moved up by one.
    void closeGap(std::uint32_t place);

private:
    std::unordered_map<std::int32_t, Entry> entries_;
};

/// What the document needs to find without a look through the list. It is told of every change to the list
/// right after it happened. A damaged file may hold one record ID or special type several times: it is found
/// at its first place, and a change around such a number may look through the whole list once.
class CRecordIndex {
public:
    void rebuild(const Datafile::RecordList& records);

    /// The last record of the list is new.
    void appended(const Datafile::RecordList& records);

    /// `record` was at `place` and is gone from the list.
    void removed(const Datafile::RecordList& records, std::size_t place, const CHardware& record);
    void exchanged(const Datafile::RecordList& records, std::size_t a, std::size_t b);

    /// The record at `place` had this Type and RecID before.
    void rekeyed(const Datafile::RecordList& records, std::size_t place, std::int32_t oldType,
                 std::int32_t oldRecID);

    std::optional<std::size_t> device(std::int32_t recID) const;

    /// Of the devices with this record ID the one that has `twin` others before it in the list.
    std::optional<std::size_t> device(const Datafile::RecordList& records, std::int32_t recID,
                                      std::size_t twin) const;

    /// How many devices before the one at `place` have its record ID: 0 in every healthy file.
    std::size_t twinOf(const Datafile::RecordList& records, std::size_t place) const;

    std::optional<std::size_t> special(std::int32_t type) const;

    /// The smallest number from 1 up that no device has. Looks on from where it last found one, so that a
    /// device added after another costs one step.
    std::int32_t nextRecordID() const;
    std::size_t deviceCount() const { return deviceCount_; }

private:
    struct Key {
        bool isDevice;
        std::int32_t number;

        bool operator==(const Key&) const = default;
    };

    static Key keyOf(std::int32_t type, std::int32_t recID);
    static Key keyOf(const CHardware& record) { return keyOf(record.Type, record.RecID); }
    CFirstPlaceTable& table(const Key& key) { return key.isDevice ? devices_ : specials_; }
    void add(const Key& key, std::size_t place);
    void drop(const Datafile::RecordList& records, const Key& key);
    void searchAgain(const Datafile::RecordList& records, const Key& key);
    void moved(const Datafile::RecordList& records, const Key& key, std::size_t to);

    CFirstPlaceTable devices_;
    CFirstPlaceTable specials_;
    mutable std::int32_t lowestFree_ = 1; ///< no free record ID is below
    std::size_t deviceCount_ = 0;
};

} // namespace mirovane
