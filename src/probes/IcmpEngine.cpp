#include "probes/IcmpEngine.h"

#include "probes/EchoCore.h"

#include <condition_variable>
#include <mutex>
#include <utility>

namespace mirovane {

namespace {

/// Where a blocked caller waits for the engine's thread.
class EchoWait {
public:
    void finish(const EchoResult& result) {
        const std::lock_guard lock(
            mutex_); // held while notifying: the waiter owns this object and leaves at once
        result_ = result;
        done_.notify_one();
    }

    EchoResult wait() {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return result_.has_value(); });
        return *result_;
    }

private:
    std::mutex mutex_;
    std::condition_variable done_;
    std::optional<EchoResult> result_;
};

} // namespace

IcmpEngine::IcmpEngine(EchoSocketOpener opener) : core_(std::make_shared<EchoCore>(std::move(opener))) {}

IcmpEngine::~IcmpEngine() {
    core_->close();
}

ProbeId IcmpEngine::start(std::uint32_t address, const EchoOptions& options, EchoCallback callback) {
    std::vector<ProbeId> ids;
    core_->start(std::span(&address, 1), options, std::move(callback), ids);
    return ids.front();
}

std::vector<ProbeId> IcmpEngine::startAll(std::span<const std::uint32_t> addresses,
                                          const EchoOptions& options, EchoCallback callback) {
    std::vector<ProbeId> ids;
    ids.reserve(addresses.size());
    core_->start(addresses, options, std::move(callback), ids);
    return ids;
}

bool IcmpEngine::cancel(ProbeId id) {
    return core_->cancel(id);
}

EchoResult IcmpEngine::echo(std::uint32_t address, const EchoOptions& options, std::stop_token stop) {
    if (stop.stop_requested()) {
        EchoResult stopped;
        stopped.kind = EchoKind::Stopped;
        stopped.target = address;
        return stopped;
    }
    const std::shared_ptr<EchoCore> core = core_;
    EchoWait wait;
    std::vector<ProbeId> ids;
    core->start(
        std::span(&address, 1), options, [&wait](const EchoResult& result) { wait.finish(result); }, ids);
    const std::stop_callback cancelling(std::move(stop), [&core, &ids] { core->cancel(ids.front()); });
    const EchoResult result = wait.wait();
    if (result.answered()) {
        core->relieveReceiveBuffer(1);
    }
    return result;
}

std::optional<std::string> IcmpEngine::unusable() {
    core_->open();
    return core_->socket() != nullptr ? std::nullopt : std::optional(core_->reason());
}

std::string IcmpEngine::socketKind() {
    core_->open();
    return core_->socket() != nullptr ? core_->socket()->kind() : "none";
}

} // namespace mirovane
