#pragma once

#include "discover/sweep/Inbox.h"
#include "discover/sweep/SweepProgress.h"
#include "probes/SweepProbes.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// Looks up what found hosts are called, a bounded number at once. When the name system stops answering, the
/// sweep does not wait for it for longer than `patience`. Calls come from one thread at a time.
class CSweepNames {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::size_t mostAtOnce = 32;      ///< small name servers drop what comes beyond
    static constexpr std::chrono::seconds patience{8}; ///< the system asks its second server after five

    /// `probes` outlives the look-ups; late answers are dropped.
    explicit CSweepNames(SweepProbes& probes) : probes_(probes), inbox_(std::make_shared<CInbox<Answer>>()) {}
    ~CSweepNames() { inbox_->close(); }
    CSweepNames(const CSweepNames&) = delete;
    CSweepNames& operator=(const CSweepNames&) = delete;

    /// A host was found. Host byte order.
    void add(std::uint32_t address) { hosts_.push_back(address); }

    /// Hosts whose name has come in.
    std::vector<FoundHost> take(Time now);

    /// Begins look-ups as far as that may be. Those that nobody has answered for too long are given up; when
    /// `probing` is over, so are all that have not begun.
    void goOn(Time now, bool probing);

    /// No name is to come.
    bool done() const { return pending_ == 0 && begun_ == hosts_.size(); }

    /// How many names are known, or known to be none.
    std::size_t answered() const { return answered_; }

private:
    struct Answer {
        std::size_t host = 0; ///< index in hosts_
        std::uint64_t round = 0;
        std::optional<std::string> name;
    };

    void giveUp(bool probing);

    SweepProbes& probes_;
    const std::shared_ptr<CInbox<Answer>> inbox_;
    std::vector<std::uint32_t> hosts_;
    std::size_t begun_ = 0; ///< of hosts_, from the first one on
    std::size_t pending_ = 0;
    std::size_t answered_ = 0;
    std::size_t limit_ = mostAtOnce;
    std::uint64_t round_ = 0; ///< answers of earlier rounds were given up
    Time lastSign_{};         ///< of life, from the name system
};

} // namespace mirovane
