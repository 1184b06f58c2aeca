#pragma once

#include "livestat/schedule/DevicePicker.h"
#include "model/Document.h"
#include "model/MessageLog.h"

namespace mirovane {

/// Live Stat Now: one pass over the devices that were selected when it was asked for. Each of them has a mark
/// in the document until its check is over. Main thread only.
class CNowPass {
public:
    CNowPass(CMirovaneDoc& document, CMessageLog& log, const CDevicePicker& picker)
        : document_(document), log_(log), picker_(picker) {}

    bool active() const { return active_; }

    /// Marks the selected devices, also for a pass that is under way; how many.
    int markSelected();

    void begin(int devices);
    void finish();

    /// Without a word: the station leaves off. What is left marked would be checked together with the next
    /// selection.
    void abandon();

    /// Another document, whose marks are its own.
    void reset() { active_ = false; }

private:
    void clearLeftMarks();

    CMirovaneDoc& document_;
    CMessageLog& log_;
    const CDevicePicker& picker_;
    bool active_ = false;
};

} // namespace mirovane
