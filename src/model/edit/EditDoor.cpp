#include "model/edit/EditDoor.h"

namespace mirovane {

SaveReport CEditDoor::edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change) {
    host_.beforeEdit(request);
    bool changed = false;
    try {
        changed = record(
            request.name, [&] { change(document_); });
    } catch (...) {
        // Half an edit is not saved at once, but the station must go on watching.
        EditRequest half = request;
        half.saving = EditRequest::Saving::Later;
        host_.afterEdit(half, true);
        throw;
    }
    return host_.afterEdit(request, changed);
}

bool CEditDoor::record(const std::string& name, const std::function<void()>& change) {
    history_.begin(name);
    try {
        change();
    } catch (...) {
        history_.end(); // what was done so far can be undone
        throw;
    }
    return history_.end();
}

} // namespace mirovane
