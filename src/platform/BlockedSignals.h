#pragma once

#include <csignal>
#include <initializer_list>

namespace mirovane {

/// Blocks signals in its thread while it lives. Threads started meanwhile take none of them; those stay with
/// the program's own threads.
class CBlockedSignals {
public:
    /// Every signal.
    CBlockedSignals();
    explicit CBlockedSignals(std::initializer_list<int> signals);

    /// Leaves errno as it is.
    ~CBlockedSignals();
    CBlockedSignals(const CBlockedSignals&) = delete;
    CBlockedSignals& operator=(const CBlockedSignals&) = delete;

    /// Takes away what came meanwhile, so that it has no effect later. A signal that was blocked before
    /// stays. Leaves errno as it is.
    void discardPending();

private:
    sigset_t signals_{};
    sigset_t before_{};
};

} // namespace mirovane
