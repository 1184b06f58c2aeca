#include "model/edit/EditDoor.h"

#include <algorithm>

namespace mirovane {

namespace {

/// While it exists, an edit is being made.
class CChanging {
public:
    explicit CChanging(bool& changing) : changing_(changing) { changing_ = true; }
    ~CChanging() { changing_ = false; }
    CChanging(const CChanging&) = delete;
    CChanging& operator=(const CChanging&) = delete;

private:
    bool& changing_;
};

/// What the reversal of a step asks of those who work on the devices.
EditRequest requestOf(const EditStep& step, CEditHistory::Way way) {
    EditRequest request;
    request.name = (way == CEditHistory::Way::Undo ? "Undo " : "Redo ") + step.name.words();
    for (const RecordEdit& edit : step.records) {
        const CHardware& record = edit.after ? *edit.after : *edit.before;
        if (!record.isDevice())
            continue;
        const auto kind = !edit.before  ? EditRequest::Kind::Delete
                          : !edit.after ? EditRequest::Kind::Add
                                        : EditRequest::Kind::Change;
        request.kind = std::max(request.kind, kind); // in the order of who must wait for whom
        if (kind != EditRequest::Kind::Add)
            request.devices.push_back({record.RecID, 0});
    }
    return request;
}

} // namespace

SaveReport CEditDoor::edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change) {
    if (const auto refusal = refused(request.name))
        return *refusal;
    return surround(request, [&] { return record(request.name, [&] { change(document_); }); });
}

SaveReport CEditDoor::surround(EditRequest request, const std::function<bool()>& make) {
    host_.beforeEdit(request);
    bool changed = false;
    try {
        changed = make();
    } catch (...) {
        // Half an edit is not saved at once, but the station must go on watching.
        saveAsked_ = false;
        request.saving = EditRequest::Saving::Later;
        host_.afterEdit(request, true);
        throw;
    }
    if (takePostponedSave())
        request.saving = EditRequest::Saving::Now;
    return host_.afterEdit(request, changed);
}

bool CEditDoor::record(const EditName& name, const std::function<void()>& change) {
    if (refused(name))
        return false;
    const CChanging changing(changing_);
    history_.begin(name);
    try {
        change();
    } catch (...) {
        history_.end(); // what was done so far can be undone
        host_.historyChanged();
        throw;
    }
    const bool changed = history_.end();
    host_.historyChanged();
    return changed;
}

SaveReport CEditDoor::reverse(CEditHistory::Way way) {
    const EditStep* step = history_.next(way);
    if (!step)
        return {};
    if (const auto refusal = refused(step->name))
        return *refusal;
    const auto make = [this, way] {
        const CChanging changing(changing_);
        if (!history_.next(way)) // whoever was waited for may have opened another datafile
            return false;
        const CEditHistory::Reversed reversed = history_.reverse(way);
        for (const std::string& line : reversed.lines)
            log_.LogMessage(line);
        host_.historyChanged();
        return reversed.changed;
    };
    return surround(requestOf(*step, way), make);
}

bool CEditDoor::postponesSave() {
    if (changing_)
        saveAsked_ = true;
    return changing_;
}

std::optional<SaveReport> CEditDoor::refused(const EditName& name) {
    if (!changing_)
        return std::nullopt;
    const std::string sentence = "\"" + name.words() + "\" was not done: another edit is being made";
    log_.LogMessage(sentence, true);
    SaveReport report;
    report.outcome = SaveReport::Outcome::Failed;
    report.error = FileError{FileError::Kind::Other, 0, sentence};
    return report;
}

void CEditDoor::forgetHistory() {
    history_.clear();
    host_.historyChanged();
}

} // namespace mirovane
