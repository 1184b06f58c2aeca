#pragma once

#include "probes/names/NameService.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace mirovane {

class CLookUpThreads;

/// Looks names up without ever hanging its caller. The system's look-ups can't be interrupted, so each runs
/// on a worker thread; a caller whose time is up or who is stopped goes away and the worker finishes on its
/// own. At most `maxWorkers` of them exist: when all hang, further look-ups wait for one and fail when their
/// own time is up. Workers without work end after a while. Destroying the resolver waits for nobody: workers
/// that hang in the system keep what they use alive, and do not hold up the end of the program. Any thread
/// may call it.
class CResolver {
public:
    using Milliseconds = std::chrono::milliseconds;
    static constexpr Milliseconds defaultTimeout{5000};

    explicit CResolver(std::shared_ptr<NameService> service = systemNameService(),
                       std::size_t maxWorkers = 256);
    ~CResolver();
    CResolver(const CResolver&) = delete;
    CResolver& operator=(const CResolver&) = delete;

    /// The first IPv4 address of a name, network byte order. No for a name that is not known and for a text
    /// that can't be a name (see classifyHostText()); a name server that has not answered when the time is up
    /// could not be asked.
    LookedUp<std::uint32_t> addressOf(const std::string& name, Milliseconds timeout, std::stop_token stop);

    /// The name of an address.
    LookedUp<std::string> nameOf(std::uint32_t address, Milliseconds timeout, std::stop_token stop);

    /// The same without waiting: `done` gets the name, or nothing, on a worker's thread when the system has
    /// answered. Never called when no worker can be had or the resolver goes away first.
    void startNameOf(std::uint32_t address, std::function<void(std::optional<std::string>)> done);

private:
    std::shared_ptr<CLookUpThreads> threads_;
};

} // namespace mirovane
