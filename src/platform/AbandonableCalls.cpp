#include "platform/AbandonableCalls.h"

#include "platform/BlockedSignals.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace mirovane {

namespace {

/// Steps look at their stop token at least every 100 ms as long as the disk answers.
constexpr std::chrono::milliseconds afterStop{300};

} // namespace

/// What the callers and their threads have in common.
struct CAbandonableCalls::Running {
    using Time = std::chrono::steady_clock::time_point;

    explicit Running(const Limits& its) : limits(its) {}

    const Limits limits;
    std::mutex mutex;
    std::condition_variable_any changed;
    std::map<std::string, std::list<Time>> begun; ///< by place, the latest last
    std::size_t all = 0;

    bool hasRoom(const std::string& place) const {
        const auto known = begun.find(place);
        return all < limits.atAll && (known == begun.end() || known->second.size() < limits.perPlace);
    }
    bool seemsToHang(const std::string& place) const {
        const auto known = begun.find(place);
        return known != begun.end() && known->second.size() >= limits.perPlace &&
               std::chrono::steady_clock::now() - known->second.back() >= limits.forTurn;
    }
    std::list<Time>::iterator begin(const std::string& place) {
        ++all;
        std::list<Time>& times = begun[place];
        return times.insert(times.end(), std::chrono::steady_clock::now());
    }
    void end(const std::string& place, std::list<Time>::iterator time) {
        --all;
        const auto known = begun.find(place);
        known->second.erase(time);
        if (known->second.empty())
            begun.erase(known);
    }
};

CAbandonableCalls::CAbandonableCalls(const Limits& limits) : running_(std::make_shared<Running>(limits)) {}

CAbandonableCalls::End CAbandonableCalls::run(const std::string& place, std::function<void()> call,
                                              std::chrono::milliseconds patience,
                                              const std::stop_token& stop) {
    std::unique_lock lock(running_->mutex);
    const auto mayBegin = [&] {
        return running_->hasRoom(place) || running_->seemsToHang(place);
    };
    running_->changed.wait_for(lock, stop, std::min(patience, running_->limits.forTurn), mayBegin);
    if (!running_->hasRoom(place) || stop.stop_requested())
        return End::Refused;
    const auto over = std::make_shared<bool>(false); // under the mutex
    const auto begun = running_->begin(place);
    try {
        const CBlockedSignals noSignals;
        std::thread([running = running_, over, place, begun, work = std::move(call)]() mutable {
            work();
            work = nullptr; // what it holds goes before anybody is told
            const std::lock_guard held(running->mutex);
            *over = true;
            running->end(place, begun);
            running->changed.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        running_->end(place, begun);
        return End::Refused;
    }
    const auto isOver = [&over] {
        return *over;
    };
    running_->changed.wait_for(lock, stop, patience, isOver);
    if (stop.stop_requested())
        running_->changed.wait_for(lock, afterStop, isOver);
    return *over ? End::Done : End::Abandoned;
}

} // namespace mirovane
