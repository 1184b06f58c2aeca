#include "livestat/schedule/NowPass.h"

#include <string>

namespace mirovane {

int CNowPass::markSelected() {
    int count = 0;
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        if (record.isDevice() && record.Selected != 0) {
            document_.setLSNowMark(record, true);
            ++count;
        }
    }
    return count;
}

void CNowPass::begin(int devices) {
    log_.LogMessage("Processing Live Stat Now on " + std::to_string(devices) + " selected object(s)...");
    active_ = true;
}

void CNowPass::finish() {
    abandon();
    log_.LogMessage("Done processing selected object(s) [LS Now]");
}

void CNowPass::abandon() {
    if (active_)
        clearLeftMarks();
    active_ = false;
}

/// Selected devices that Live Stat does not check (location markers, for one) never reach the end of their
/// rows.
void CNowPass::clearLeftMarks() {
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        if (record.LSNowMark != 0 && !picker_.holds(record.RecID))
            document_.setLSNowMark(record, false);
    }
}

} // namespace mirovane
