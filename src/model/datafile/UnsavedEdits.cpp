#include "model/datafile/UnsavedEdits.h"

#include "model/datafile/Merge.h"
#include "model/records/SpecialRecords.h"
#include "platform/files/FileErrors.h"

#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

namespace mirovane {

namespace {

/// What such a file holds, as the document would hold it.
void restore(const KeptEdit& edit, Datafile::RecordList& ours, CEditJournal& journal) {
    if (edit.kind == KeptEdit::Kind::Removed) {
        journal.removed(std::make_unique<CHardware>(edit.base));
        return;
    }
    ours.push_back(std::make_unique<CHardware>(edit.ours));
    if (edit.kind == KeptEdit::Kind::Added)
        journal.added(*ours.back());
    else
        journal.changed(edit.base, *ours.back(), edit.byUser);
}

Datafile::RecordList copyOf(const Datafile::RecordList& records) {
    Datafile::RecordList copy;
    copy.reserve(records.size());
    for (const auto& record : records)
        copy.push_back(std::make_unique<CHardware>(*record));
    return copy;
}

} // namespace

CUnsavedEdits::CUnsavedEdits(CMirovaneDoc& document, CMessageLog& log, CFileCalls& calls, std::string folder)
    : document_(document), log_(log), file_(log, calls, std::move(folder)) {
    document_.addObserver(*this);
}

/// What is not saved stays for the next program.
CUnsavedEdits::~CUnsavedEdits() {
    document_.removeObserver(*this);
}

void CUnsavedEdits::takeDatafile(const std::string& path) {
    forget();
    failed_ = false;
    file_.setDatafile(path);
    const std::vector<KeptEdit> edits = file_.takeLeftovers();
    if (!edits.empty())
        putOnTop(edits);
    keep(path);
}

void CUnsavedEdits::putOnTop(const std::vector<KeptEdit>& edits) {
    Datafile::RecordList ours;
    CEditJournal journal;
    for (const KeptEdit& edit : edits) {
        restore(edit, ours, journal);
        if (const CHardware* follower = edit.follower == 0 ? nullptr : document_.findDevice(edit.follower))
            ours.push_back(std::make_unique<CHardware>(*follower));
    }
    MergeResult result = mergeEdits(copyOf(document_.records()), ours, journal);
    log_.LogMessage("Edits of " + std::to_string(edits.size()) +
                        " record(s), which could not be saved before, are put into the datafile",
                    true);
    for (const std::string& line : result.lines)
        log_.LogLasting(line);
    document_.replaceByReload(std::move(result.records), std::move(result.journal), result.renumbered);
}

void CUnsavedEdits::keep(const std::string& path) {
    const bool all = !document_.unsavedEdits();
    if (all)
        file_.discard();
    if (all || failed_ || arrivals_ != document_.arrivals())
        forget(); // what was saved must not be put on top of what others make of it
    arrivals_ = document_.arrivals();
    if (path != file_.datafile())
        file_.setDatafile(path);
    if (all || !file_.enabled()) {
        failed_ = false;
        return;
    }
    const bool whole = stale_ || !file_.open() || file_.grown();
    if (whole ? file_.write(everything()) : file_.append(changesSince())) {
        stale_ = failed_ = false;
        return;
    }
    const int code = errno;
    stale_ = true;
    if (!std::exchange(failed_, true))
        log_.LogTrouble(fileError("cannot keep unsaved edits in", file_.folder(), code).sentence +
                            ". They are in memory only",
                        true);
}

std::uint32_t CUnsavedEdits::numberOf(const CHardware& record) {
    const auto [place, fresh] = numbers_.try_emplace(&record, nextNumber_);
    nextNumber_ += fresh ? 1U : 0U;
    return place->second;
}

/// Not what is saved, was found by Live Stat, or says who runs a feature: that is over with the program.
bool CUnsavedEdits::isEdited(const CHardware& record) const {
    const CEditJournal::Change* change = document_.journal().changeOf(record);
    return document_.journal().isAdded(record) || (change && change->byUser.any() && !isOwnerRecord(record));
}

KeptEdit CUnsavedEdits::editOf(const CHardware& record) const {
    KeptEdit edit;
    edit.kind = KeptEdit::Kind::Added;
    edit.ours = record;
    if (const CEditJournal::Change* change = document_.journal().changeOf(record)) {
        edit.kind = KeptEdit::Kind::Changed;
        edit.base = change->base;
        edit.byUser = change->byUser;
        edit.follower = followerOf(record);
    }
    allowForSave(record, edit);
    return edit;
}

/// The program may die before it learns whether the save that is under way arrived. So what is kept must be
/// right for both: on top of the datafile that was read, and on top of what is being saved.
void CUnsavedEdits::allowForSave(const CHardware& record, KeptEdit& edit) const {
    const CEditJournal* journal = document_.journalSinceSave();
    const CEditJournal::Change* since = journal ? journal->changeOf(record) : nullptr;
    if (!since)
        return;
    if (edit.kind == KeptEdit::Kind::Added) {
        edit.kind = KeptEdit::Kind::Changed;
        edit.base = since->base;
        edit.byUser = since->byUser;
        return;
    }
    const auto fields = recordFields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (since->byUser[i])
            copyField(since->base, edit.base, fields[i]);
    edit.byUser |= since->byUser;
}

/// The same for what has gone since: as it is being saved.
std::string CUnsavedEdits::removalsSince() {
    std::string entries;
    const CEditJournal* journal = document_.journalSinceSave();
    if (!journal || journal->removals().size() < removalsSinceWritten_)
        removalsSinceWritten_ = 0;
    for (; journal && removalsSinceWritten_ < journal->removals().size(); ++removalsSinceWritten_)
        entries += KeptEditsFormat::entry(
            nextNumber_++, {KeptEdit::Kind::Removed, *journal->removals()[removalsSinceWritten_], {}, {}, 0});
    return entries;
}

std::int32_t CUnsavedEdits::followerOf(const CHardware& device) const {
    const auto place = device.isDevice() ? document_.indexOfDevice(device.RecID) : std::nullopt;
    for (std::size_t next = place ? *place + 1 : document_.size(); next < document_.size(); ++next)
        if (document_.at(next).isDevice() && !document_.journal().isAdded(document_.at(next)))
            return document_.at(next).RecID;
    return 0;
}

std::string CUnsavedEdits::changesSince() {
    std::string entries = std::exchange(withdrawals_, {});
    for (const CHardware* record : touched_)
        if (isEdited(*record))
            entries += KeptEditsFormat::entry(numberOf(*record), editOf(*record));
        else if (const auto known = numbers_.find(record); known != numbers_.end())
            entries += KeptEditsFormat::withdrawal(known->second);
    touched_.clear();
    const Datafile::RecordList& removals = document_.journal().removals();
    for (; removalsWritten_ < removals.size(); ++removalsWritten_) {
        const CHardware& gone = *removals[removalsWritten_];
        entries += KeptEditsFormat::entry(numberOf(gone), {KeptEdit::Kind::Removed, gone, {}, {}, 0});
    }
    return entries + removalsSince();
}

std::string CUnsavedEdits::everything() {
    forget();
    const CEditJournal& journal = document_.journal();
    for (const auto& record : document_.records())
        if (journal.isAdded(*record) || journal.changeOf(*record))
            touched_.insert(record.get());
    return KeptEditsFormat::head(file_.datafile()) + changesSince();
}

void CUnsavedEdits::forget() {
    numbers_.clear();
    touched_.clear();
    withdrawals_.clear();
    removalsWritten_ = removalsSinceWritten_ = 0;
    nextNumber_ = 1;
    stale_ = true;
}

// ---- what the document tells

void CUnsavedEdits::recordAdded(const CHardware& record) {
    if (file_.open())
        touched_.insert(&record);
}

/// Live Stat changes thousands of records that are nobody's edit.
void CUnsavedEdits::recordChanged(const CHardware&, const CHardware& after) {
    if (file_.open() && (numbers_.contains(&after) || isEdited(after)))
        touched_.insert(&after);
}

/// A record that was only added here is freed, and its address may serve another one.
void CUnsavedEdits::recordRemoved(const CHardware& record) {
    touched_.erase(&record);
    if (!document_.journal().isAdded(record))
        return;
    if (const auto known = numbers_.find(&record); known != numbers_.end()) {
        withdrawals_ += KeptEditsFormat::withdrawal(known->second);
        numbers_.erase(known);
    }
}

void CUnsavedEdits::documentReplaced() {
    forget();
}

} // namespace mirovane
