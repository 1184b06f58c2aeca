#include "model/datafile/Merge.h"

#include "model/datafile/MergeLines.h"
#include "model/datafile/RecordMatch.h"
#include "model/records/SpecialRecords.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace mirovane {

namespace {

/// Fields whose change by another station is somebody's work: whether a device answers is not.
FieldSet editedFields(const CHardware& before, const CHardware& after) {
    FieldSet fields = changedFields(before, after);
    const auto all = recordFields();
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i].kind == FieldKind::State && after.isDevice())
            fields[i] = false;
    return fields;
}

class CMerging {
public:
    CMerging(Datafile::RecordList theirs, const Datafile::RecordList& ours, const CEditJournal& journal)
        : ours_(ours), journal_(journal), theirs_(std::move(theirs)), match_(ours, journal, theirs_) {}

    MergeResult run() {
        findCounterparts();
        for (const Pair& pair : changes_)
            applyChange(*pair.ours, *journal_.changeOf(*pair.ours), *pair.theirs);
        for (const Pair& pair : removals_)
            applyRemoval(*pair.ours, *pair.theirs);
        takeOut();
        number();
        for (const CHardware* record : appended_)
            append(*record);
        result_.records = std::move(theirs_);
        return std::move(result_);
    }

private:
    struct Pair {
        const CHardware* ours = nullptr; ///< of a removed record: as it was
        CHardware* theirs = nullptr;
    };

    /// All before anything is changed: records are recognised by what they hold.
    void findCounterparts() {
        for (const auto& record : ours_) {
            if (journal_.isAdded(*record)) {
                findAdded(*record);
            } else if (const CEditJournal::Change* change = journal_.changeOf(*record)) {
                if (CHardware* theirs = match_.findChanged(change->base, *record))
                    changes_.push_back({record.get(), theirs});
                else if (change->byUser.any())
                    bringBack(*record, *change);
            }
        }
        for (const auto& base : journal_.removals())
            if (CHardware* theirs = match_.find(*base))
                removals_.push_back({base.get(), theirs});
    }

    /// Another station may have added the one floor map or criteria row, too, or may have read ours already.
    void findAdded(const CHardware& added) {
        const bool single = !added.isDevice() && !isListedSpecial(added.Type);
        CHardware* theirs = single ? match_.find(added) : match_.findSameNew(added);
        if (!theirs)
            appended_.push_back(&added);
        else if (single && !isOwnerRecord(added) && added.Type != SpecialType::VersionRecord)
            putOn(added, changedFields(CHardware(), added), CHardware(), *theirs);
    }

    void bringBack(const CHardware& ours, const CEditJournal::Change& change) {
        if ((change.byUser & changedFields(change.base, ours)).none())
            return;
        if (!isOwnerRecord(ours))
            result_.lines.push_back(MergeLines::cameBack(ours));
        appended_.push_back(&ours);
    }

    void applyChange(const CHardware& ours, const CEditJournal::Change& change, CHardware& theirs) {
        if (isOwnerRecord(ours)) {
            if (sameOwner(change.base, theirs))
                putOn(ours, change.byUser, change.base, theirs);
        } else if (sameStored(change.base, theirs)) {
            const CHardware before = theirs;
            copyStored(ours, theirs);
            theirs.ReminderDue = 0;
            result_.journal.changed(before, theirs, change.byUser);
        } else {
            putOn(ours, change.byUser, change.base, theirs);
        }
    }

    /// Field by field.
    void putOn(const CHardware& ours, const FieldSet& byUser, const CHardware& base, CHardware& theirs) {
        const CHardware before = theirs;
        const auto fields = recordFields();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const RecordField& field = fields[i];
            if (!isMergedField(field) || sameField(ours, base, field) || sameField(ours, theirs, field))
                continue;
            const bool crossing = !sameField(theirs, base, field);
            if (crossing && !byUser[i])
                continue;
            if (crossing)
                result_.lines.push_back(MergeLines::gaveWay(ours, theirs, field));
            copyField(ours, theirs, field);
        }
        if (changedFields(before, theirs).none())
            return;
        theirs.Modified = std::max(theirs.Modified, ours.Modified);
        if (theirs.isDevice())
            theirs.StampsModified = 0; // text files are searched again: neither side's memory of them holds
        result_.journal.changed(before, theirs, byUser);
    }

    void applyRemoval(const CHardware& base, CHardware& theirs) {
        if (editedFields(base, theirs).none())
            gone_.insert(&theirs);
        else
            result_.lines.push_back(MergeLines::keptTheirs(theirs));
    }

    void takeOut() {
        if (gone_.empty())
            return;
        for (auto& record : theirs_)
            if (gone_.contains(record.get()))
                result_.journal.removed(std::move(record));
        std::erase(theirs_, nullptr);
    }

    /// Whoever can keep his number does; the others get what is free then.
    void number() {
        std::unordered_set<std::int32_t> taken;
        for (const auto& record : theirs_)
            if (record->isDevice())
                taken.insert(record->RecID);
        std::vector<const CHardware*> unnumbered;
        for (const CHardware* record : appended_)
            if (record->isDevice() && taken.insert(record->RecID).second)
                recIDs_[record] = record->RecID;
            else if (record->isDevice())
                unnumbered.push_back(record);
        std::int32_t free = 1;
        for (const CHardware* record : unnumbered) {
            while (!taken.insert(free).second)
                ++free;
            recIDs_[record] = free;
        }
    }

    void append(const CHardware& record) {
        auto copy = std::make_unique<CHardware>();
        copyStored(record, *copy);
        copy->ReminderDue = 0;
        if (record.isDevice())
            copy->RecID = recIDs_.at(&record);
        if (copy->RecID != record.RecID) {
            result_.renumbered.push_back({record.RecID, copy->RecID});
            result_.lines.push_back(MergeLines::renumbered(record, copy->RecID));
        }
        result_.journal.added(*copy);
        theirs_.push_back(std::move(copy));
    }

    const Datafile::RecordList& ours_;
    const CEditJournal& journal_;
    Datafile::RecordList theirs_;
    CRecordMatch match_;
    std::vector<Pair> changes_;
    std::vector<Pair> removals_;
    std::unordered_set<const CHardware*> gone_;
    std::vector<const CHardware*> appended_;
    std::unordered_map<const CHardware*, std::int32_t> recIDs_;
    MergeResult result_;
};

} // namespace

MergeResult mergeEdits(Datafile::RecordList theirs, const Datafile::RecordList& ours,
                       const CEditJournal& journal) {
    return CMerging(std::move(theirs), ours, journal).run();
}

} // namespace mirovane
