#pragma once

namespace mirovane {

/// Why a station holds still: an edit is being made, or somebody asks the user. Main thread; a part of the
/// station, which outlives every pause.
class CPauses {
public:
    bool any() const { return count_ > 0; }

private:
    friend class CPause;
    int count_ = 0;
};

/// While one exists, no timer of the station does anything: for dialogs that run an event loop of their own.
class [[nodiscard]] CPause {
public:
    explicit CPause(CPauses& pauses) : pauses_(pauses) { ++pauses_.count_; }
    ~CPause() { --pauses_.count_; }
    CPause(const CPause&) = delete;
    CPause& operator=(const CPause&) = delete;

private:
    CPauses& pauses_;
};

} // namespace mirovane
