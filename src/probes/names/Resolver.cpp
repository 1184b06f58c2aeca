#include "probes/names/Resolver.h"

#include "probes/names/HostAddress.h"
#include "probes/names/LookUpThreads.h"

#include <condition_variable>
#include <mutex>

namespace mirovane {

namespace {

/// One answer on its way from a worker to a caller who may have left.
template <typename Value>
struct Pending {
    std::mutex mutex;
    std::condition_variable_any changed;
    bool done = false;
    LookedUp<Value> answer;
};

ProbeAnswer notInTime(const std::stop_token& stop) {
    return stop.stop_requested()
               ? ProbeAnswer::stopped()
               : ProbeAnswer::couldNotAsk(AskedThrough::NameService, "the name server does not answer");
}

template <typename Value, typename Ask>
LookedUp<Value> askWithin(CLookUpThreads& threads, CResolver::Milliseconds timeout, std::stop_token stop,
                          Ask ask) {
    if (stop.stop_requested())
        return {ProbeAnswer::stopped()};
    const auto pending = std::make_shared<Pending<Value>>();
    const auto job =
        std::make_shared<CLookUpThreads::Job>([pending, ask = std::move(ask)](NameService& service) {
            auto answer = ask(service);
            const std::lock_guard lock(pending->mutex);
            pending->answer = std::move(answer);
            pending->done = true;
            pending->changed.notify_one();
        });
    if (!threads.run(job))
        return {ProbeAnswer::couldNotAsk(AskedThrough::NameService, "there is no thread for it")};
    std::unique_lock lock(pending->mutex);
    if (!pending->changed.wait_for(lock, stop, timeout, [&pending] { return pending->done; })) {
        lock.unlock();
        threads.forget(job);
        return {notInTime(stop)};
    }
    return std::move(pending->answer);
}

} // namespace

CResolver::CResolver(std::shared_ptr<NameService> service, std::size_t maxWorkers)
    : threads_(std::make_shared<CLookUpThreads>(std::move(service), maxWorkers)) {}

CResolver::~CResolver() {
    threads_->close();
}

LookedUp<std::uint32_t> CResolver::addressOf(const std::string& name, Milliseconds timeout,
                                             std::stop_token stop) {
    if (classifyHostText(name) != HostTextKind::Name)
        return {ProbeAnswer::no("this can't be the name of a host")};
    return askWithin<std::uint32_t>(*threads_, timeout, std::move(stop),
                                    [text = std::string(trimmedHostText(name))](NameService& service) {
                                        return service.addressOf(text);
                                    });
}

LookedUp<std::string> CResolver::nameOf(std::uint32_t address, Milliseconds timeout, std::stop_token stop) {
    return askWithin<std::string>(
        *threads_, timeout, std::move(stop),
        [address](NameService& service) { return service.nameOf(address); });
}

void CResolver::startNameOf(std::uint32_t address, std::function<void(std::optional<std::string>)> done) {
    threads_->run(
        std::make_shared<CLookUpThreads::Job>([address, done = std::move(done)](NameService& service) {
            LookedUp<std::string> name = service.nameOf(address);
            done(name.found() ? std::optional(std::move(name.value)) : std::nullopt);
        }));
}

} // namespace mirovane
