#include "model/edit/EditHistory.h"

#include "model/EditJournal.h"
#include "model/records/SpecialRecords.h"

#include <cassert>
#include <utility>

namespace mirovane {

namespace {

/// Who runs a feature is not the user's edit, and an undo must not claim it back.
bool canBeUndone(const CHardware& record) {
    return !isOwnerRecord(record) && record.Type != SpecialType::VersionRecord;
}

/// Came and went within the step, is in the end as it was, or has only got what follows by itself.
bool saysNothing(const RecordEdit& edit) {
    if (edit.before && edit.after)
        return changedFields(*edit.before, *edit.after).none();
    return !edit.before && !edit.after;
}

std::size_t bytesOf(const std::optional<CHardware>& record) {
    if (!record)
        return 0;
    std::size_t bytes = 0;
    for (const RecordField& field : recordFields())
        if (const auto* text = std::get_if<std::string CHardware::*>(&field.member))
            bytes += (record.value().**text).capacity();
    return bytes;
}

std::size_t bytesOf(const std::vector<RecordEdit>& edits) {
    std::size_t bytes = 0;
    for (const RecordEdit& edit : edits)
        bytes += sizeof edit + bytesOf(edit.before) + bytesOf(edit.after);
    return bytes;
}

} // namespace

CEditHistory::CEditHistory(CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
}

CEditHistory::~CEditHistory() {
    document_.removeObserver(*this);
}

// ---- the two rows

void CEditHistory::begin(EditName name) {
    assert(!open_);
    open_ = EditStep{std::move(name), {}, 0};
    changed_ = false;
}

bool CEditHistory::end() {
    if (auto step = finished()) {
        for (const EditStep& gone : undone_)
            bytes_ -= gone.bytes;
        undone_.clear();
        push(done_, *std::move(step));
    }
    return changed_;
}

std::optional<EditStep> CEditHistory::finished(const ReversalResult& reversal) {
    EditStep step = *std::exchange(open_, std::nullopt);
    places_ = {};
    std::erase_if(step.records, saysNothing);
    if (step.records.empty())
        return std::nullopt;
    giveTickets(step.records, reversal);
    return step;
}

/// A step may remove a device and add another one under its number.
void CEditHistory::giveTickets(std::vector<RecordEdit>& edits, const ReversalResult& reversal) {
    for (RecordEdit& edit : edits)
        if (!edit.after && edit.before->isDevice()) {
            edit.ticket = numbers_.ticketOf(edit.before->RecID);
            numbers_.left(edit.before->RecID);
        }
    for (const auto& [ticket, recID] : reversal.back)
        numbers_.cameBack(ticket, recID);
    for (RecordEdit& edit : edits)
        if (edit.after && edit.after->isDevice())
            edit.ticket = numbers_.ticketOf(edit.after->RecID);
}

CEditHistory::Reversed CEditHistory::reverse(Way way) {
    assert(next(way));
    auto& from = way == Way::Undo ? done_ : undone_;
    auto& to = way == Way::Undo ? undone_ : done_;
    EditStep step = takeLast(from);
    for (RecordEdit& edit : step.records)
        for (auto* side : {&edit.before, &edit.after})
            if (*side && (*side)->isDevice())
                (*side)->RecID = numbers_.numberOf(edit.ticket);
    begin(step.name);
    ReversalResult result = reverseStep(document_, step, way == Way::Undo ? "Undo" : "Redo");
    if (auto opposite = finished(result))
        push(to, *std::move(opposite));
    if (!result.left.empty())
        push(from, {std::move(step.name), std::move(result.left), 0});
    return {changed_, std::move(result.lines)};
}

const EditStep* CEditHistory::next(Way way) const {
    const auto& row = way == Way::Undo ? done_ : undone_;
    return row.empty() ? nullptr : &row.back();
}

void CEditHistory::clear() {
    done_.clear();
    undone_.clear();
    numbers_.clear();
    bytes_ = 0;
}

void CEditHistory::push(std::deque<EditStep>& row, EditStep step) {
    step.bytes = bytesOf(step.records);
    bytes_ += step.bytes;
    row.push_back(std::move(step));
    while (done_.size() + undone_.size() > 1 && (done_.size() > mostSteps || bytes_ > mostBytes))
        dropOldest();
}

EditStep CEditHistory::takeLast(std::deque<EditStep>& row) {
    EditStep step = std::move(row.back());
    row.pop_back();
    bytes_ -= step.bytes;
    return step;
}

/// Of the undone ones, the one that would be redone last.
void CEditHistory::dropOldest() {
    auto& row = done_.empty() ? undone_ : done_;
    bytes_ -= row.front().bytes;
    row.pop_front();
}

// ---- what the document tells

RecordEdit& CEditHistory::editOf(const CHardware& record) {
    const auto [place, fresh] = places_.try_emplace(&record, open_->records.size());
    if (fresh)
        open_->records.emplace_back();
    return open_->records[place->second];
}

void CEditHistory::recordAdded(const CHardware& record) {
    changed_ = true;
    if (open_ && canBeUndone(record))
        editOf(record).after = record;
}

void CEditHistory::recordChanged(const CHardware& before, const CHardware& after) {
    changed_ = true;
    if (!open_ || !canBeUndone(after))
        return;
    const bool known = places_.contains(&after);
    RecordEdit& edit = editOf(after);
    if (!known)
        edit.before = before;
    edit.after = after;
}

void CEditHistory::recordRemoved(const CHardware& record) {
    changed_ = true;
    if (!open_ || !canBeUndone(record))
        return;
    const bool known = places_.contains(&record);
    RecordEdit& edit = editOf(record);
    if (!known)
        edit.before = record;
    edit.after.reset();
    places_.erase(&record); // its address may serve another record
}

void CEditHistory::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    renumbered_.emplace_back(oldRecID, newRecID);
}

void CEditHistory::documentReplaced() {
    numbers_.renumber(std::exchange(renumbered_, {}));
    places_ = {};
    if (open_)
        open_->records.clear(); // nobody knows any more which records it meant
}

} // namespace mirovane
