#include "ui/frame/editing/EditRunner.h"

#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WaitCursor.h"

#include <new>

namespace mirovane {

bool CEditRunner::run(const FloorEdit& edit) {
    SaveReport saved;
    const bool done = guarded([&] {
        const CWaitCursor wait;
        saved = station_.edit(edit.request, edit.change);
    });
    report(saved);
    return done;
}

bool CEditRunner::guarded(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
        dialogs_.fail("Out of memory");
        return false;
    }
    return true;
}

bool CEditRunner::runAdding(const FloorEdit& edit, std::size_t wanted) {
    const std::size_t before = station_.document().deviceCount();
    if (!run(edit))
        return false;
    if (station_.document().deviceCount() >= before + wanted)
        return true;
    const bool full = station_.document().size() >= Datafile::maxRecords;
    dialogs_.fail(full ? "The datafile is full: it holds 65,534 records and no more." : "Out of memory");
    return false;
}

void CEditRunner::report(const SaveReport& report) {
    if (report.failed())
        dialogs_.fail(saveFailureText(*report.error));
}

} // namespace mirovane
