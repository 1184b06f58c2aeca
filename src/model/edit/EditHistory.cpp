#include "model/edit/EditHistory.h"

#include <utility>

namespace mirovane {

CEditHistory::~CEditHistory() {
    document_.removeObserver(*this);
}

void CEditHistory::begin(std::string name) {
    open_ = EditStep{std::move(name), {}};
    places_.clear();
    document_.addObserver(*this);
}

bool CEditHistory::end() {
    document_.removeObserver(*this);
    EditStep step = *std::exchange(open_, std::nullopt);
    // Added and gone again within the step.
    std::erase_if(step.records, [](const RecordEdit& edit) { return !edit.before && !edit.after; });
    if (step.records.empty())
        return false;
    steps_.push_back(std::move(step));
    if (steps_.size() > mostSteps)
        steps_.pop_front();
    return true;
}

RecordEdit& CEditHistory::editOf(const CHardware& record) {
    const auto [place, fresh] = places_.try_emplace(&record, open_->records.size());
    if (fresh)
        open_->records.emplace_back();
    return open_->records[place->second];
}

void CEditHistory::recordAdded(const CHardware& record) {
    editOf(record).after = record;
}

void CEditHistory::recordChanged(const CHardware& before, const CHardware& after) {
    const bool known = places_.contains(&after);
    RecordEdit& edit = editOf(after);
    if (!known)
        edit.before = before;
    edit.after = after;
}

void CEditHistory::recordRemoved(const CHardware& record) {
    const bool known = places_.contains(&record);
    RecordEdit& edit = editOf(record);
    if (!known)
        edit.before = record;
    edit.after.reset();
    places_.erase(&record); // its address may serve another record
}

} // namespace mirovane
