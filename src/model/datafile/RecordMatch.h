#pragma once

#include "model/EditJournal.h"
#include "model/RecordIndex.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace mirovane {

/// Finds the records of one reading of the datafile again in the next one. Devices have a number for that,
/// which another device may have got meanwhile; of most special records there is one of each type; external
/// applications, discover ranges and devices that share a number are known by what they hold.
class CRecordMatch {
public:
    /// `ours` is the list that grew out of the earlier reading, by the changes in `journal`; `theirs` is the
    /// new reading. All of it must stay unchanged while matches are asked for.
    CRecordMatch(const Datafile::RecordList& ours, const CEditJournal& journal,
                 const Datafile::RecordList& theirs);

    /// The record that was `base` in the earlier reading; null when it is gone. A device with its number may
    /// be another one.
    CHardware* find(const CHardware& base);

    /// As `find`, but a device that only has the number of `base` is not it. `held` is the record of our list
    /// that `base` became.
    CHardware* findChanged(const CHardware& base, const CHardware& held);

    /// For a record that we added: one that says the same and that was not in the earlier reading. A device
    /// counts as ours only with our stamp on it: then a save that was reported as failed did reach the file.
    CHardware* findSameNew(const CHardware& added);

private:
    bool keptItsPlace(const CHardware& held, std::size_t place) const;
    using Group = std::function<bool(const CHardware&)>;

    /// A damaged file holds its number several times.
    bool isRepeated(const CHardware& device) const;
    void matchListed(std::int32_t type);
    void matchTwins(std::int32_t recID);
    void match(const Group& group, bool (*alike)(const CHardware&, const CHardware&));
    std::vector<const CHardware*> basesOf(const Group& group) const;

    const Datafile::RecordList& ours_;
    const CEditJournal& journal_;
    const Datafile::RecordList& theirs_;
    CRecordIndex index_;
    std::unordered_set<std::int32_t> listedTypes_;            ///< matched already
    std::unordered_set<std::int32_t> twinsMatched_;           ///< by record ID
    std::unordered_map<const CHardware*, CHardware*> listed_; ///< by base
    std::unordered_set<const CHardware*> listedTaken_;        ///< of `theirs`
};

} // namespace mirovane
