#include "station/Station.h"

namespace mirovane {

/// The watch stands still meanwhile: a reload in the middle would replace what is being saved.
void CStation::deviceDiscovered() {
    watchTimer_->stop();
    if (saveDatafile())
        doc_->setPendingChanges(true); // the save was reported; the next periodic one takes it along
    redraw();
    indicatorsChanged();
    watchTimer_->start(watchPeriod);
}

} // namespace mirovane
