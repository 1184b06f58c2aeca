#include "probes/names/Resolver.h"

#include "probes/names/HostAddress.h"
#include "probes/names/LookUpThreads.h"

#include <condition_variable>
#include <mutex>

namespace mirovane {

namespace {

/// One answer on its way from a worker to a caller who may have left.
template <typename Answer>
struct Pending {
    std::mutex mutex;
    std::condition_variable_any changed;
    bool done = false;
    std::optional<Answer> answer;
};

template <typename Answer, typename Ask>
std::optional<Answer> askWithin(CLookUpThreads& threads, CResolver::Milliseconds timeout,
                                std::stop_token stop, Ask ask) {
    if (stop.stop_requested())
        return std::nullopt;
    const auto pending = std::make_shared<Pending<Answer>>();
    const auto job =
        std::make_shared<CLookUpThreads::Job>([pending, ask = std::move(ask)](NameService& service) {
            auto answer = ask(service);
            const std::lock_guard lock(pending->mutex);
            pending->answer = std::move(answer);
            pending->done = true;
            pending->changed.notify_one();
        });
    if (!threads.run(job))
        return std::nullopt;
    std::unique_lock lock(pending->mutex);
    if (!pending->changed.wait_for(lock, stop, timeout, [&pending] { return pending->done; })) {
        lock.unlock();
        threads.forget(job);
        return std::nullopt;
    }
    return std::move(pending->answer);
}

} // namespace

CResolver::CResolver(std::shared_ptr<NameService> service, std::size_t maxWorkers)
    : threads_(std::make_shared<CLookUpThreads>(std::move(service), maxWorkers)) {}

CResolver::~CResolver() {
    threads_->close();
}

std::optional<std::uint32_t> CResolver::addressOf(const std::string& name, Milliseconds timeout,
                                                  std::stop_token stop) {
    if (classifyHostText(name) != HostTextKind::Name)
        return std::nullopt;
    return askWithin<std::uint32_t>(*threads_, timeout, std::move(stop),
                                    [text = std::string(trimmedHostText(name))](NameService& service) {
                                        return service.addressOf(text);
                                    });
}

std::optional<std::string> CResolver::nameOf(std::uint32_t address, Milliseconds timeout,
                                             std::stop_token stop) {
    return askWithin<std::string>(
        *threads_, timeout, std::move(stop),
        [address](NameService& service) { return service.nameOf(address); });
}

void CResolver::startNameOf(std::uint32_t address, std::function<void(std::optional<std::string>)> done) {
    threads_->run(std::make_shared<CLookUpThreads::Job>(
        [address, done = std::move(done)](NameService& service) { done(service.nameOf(address)); }));
}

} // namespace mirovane
