#pragma once

#include "livestat/SweepPace.h"
#include "livestat/SweepPlan.h"
#include "model/Datafile.h"
#include "platform/Clock.h"
#include "probes/SweepProbes.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace mirovane {

struct SweepOptions {
    int perSecond = usualSweepRate;

    /// All probes wait at once, so a generous time-out costs its length once at the end, and hosts behind
    /// slow links are found.
    EchoOptions echo;

    /// The sweep ends when it has found so many: the datafile takes no more.
    std::size_t mostFound = Datafile::maxRecords;
};

/// A host that answered.
struct FoundHost {
    std::uint32_t address = 0; ///< host byte order
    std::string name;          ///< empty: none is known, or not yet

    bool operator==(const FoundHost&) const = default;
};

enum class SweepPhase {
    Sending, ///< probes leave
    Waiting, ///< for the last replies
    Naming,  ///< for names of found hosts
    Over,
};

/// How far a sweep has come. A plain value.
struct SweepProgress {
    SweepPhase phase = SweepPhase::Sending;
    std::uint64_t total = 0; ///< probes of the whole sweep
    std::uint64_t sent = 0;  ///< asked so far
    std::uint64_t ended = 0; ///< answered, timed out or failed
    std::size_t found = 0;
    std::size_t lookedUp = 0;          ///< found hosts whose name is known, or known to be none
    std::uint64_t failed = 0;          ///< could not be sent
    int failure = 0;                   ///< errno of the first of them
    bool full = false;                 ///< ended at SweepOptions::mostFound
    std::chrono::milliseconds left{0}; ///< expected until the phase Waiting is over
};

/// One pass over a plan: what leaves when, who answered, what they are called. Does what is due each time it
/// is told to go on, waits for nothing and has no thread of its own; calls come from one thread at a time.
/// Destroying it at any moment abandons what is in flight: late answers are ignored.
///
/// An address is asked once. A request that the system could not take (a full neighbour table, no memory) did
/// not leave: its address comes again later, a few times.
///
/// Names are looked up beside the probing, a bounded number at once. When the name system stops answering,
/// the sweep does not wait for it for longer than `namePatience`.
class SweepRun {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::size_t mostLookUps = 32;         ///< small name servers drop what comes beyond
    static constexpr std::chrono::seconds namePatience{8}; ///< the system asks its second server after five
    static constexpr std::chrono::seconds mostNaming{60};  ///< after the last probe

    /// References outlive the run; `plan` is kept.
    SweepRun(SweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock);
    ~SweepRun();
    SweepRun(const SweepRun&) = delete;
    SweepRun& operator=(const SweepRun&) = delete;

    /// Does what is due. When to call again, at the latest; nothing once the sweep is over.
    std::optional<Time> goOn();

    const SweepProgress& progress() const { return progress_; }

    /// Hosts found and names learned since the last call. A host comes once when it is found, and again when
    /// its name is known.
    std::vector<FoundHost> takeNews();

private:
    class Inbox;
    struct NameAnswer;

    void collect(Time now);
    void takeEcho(const EchoResult& echo);
    void retryOrFail(std::uint32_t address, int error);
    void send(Time now);
    std::optional<std::uint32_t> nextAddress();
    void startLookUps(Time now);
    void takeName(const NameAnswer& answer, Time now);
    void giveUpLookUps();
    bool allSent() const { return !hasNext_ && retries_.empty(); }
    std::chrono::milliseconds expectedLeft(Time now) const;
    void updatePhase(Time now);

    const SweepPlan plan_;
    const SweepOptions options_;
    SweepProbes& probes_;
    const Clock& clock_;
    const std::shared_ptr<Inbox> inbox_; ///< shared with callbacks that may come after the run's end

    SweepCursor cursor_;
    SweepPace pace_;
    bool hasNext_ = true;
    std::deque<std::uint32_t> retries_;
    std::unordered_map<std::uint32_t, int> attempts_; ///< of addresses whose request could not leave
    std::uint64_t inFlight_ = 0;
    Time lastSent_{};
    std::vector<std::uint32_t> batch_;

    std::vector<std::uint32_t> found_;
    std::vector<FoundHost> news_;
    std::size_t named_ = 0; ///< hosts of found_ whose look-up was begun
    std::size_t lookUps_ = 0;
    std::size_t lookUpLimit_ = mostLookUps;
    std::uint64_t lookUpRound_ = 0; ///< answers of earlier rounds were given up
    Time nameNews_{};               ///< when the name system last gave a sign of life
    Time namingSince_{};
    SweepProgress progress_;
};

} // namespace mirovane
