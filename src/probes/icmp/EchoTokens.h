#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <sys/random.h>

namespace mirovane {

/// Numbers that nobody can guess, taken from the kernel in bulk. One thread.
class CEchoTokens {
public:
    std::uint64_t next() {
        if (used_ == pool_.size())
            refill();
        return pool_[used_++];
    }

private:
    void refill() {
        constexpr auto size = static_cast<ssize_t>(sizeof pool_);
        if (::getrandom(pool_.data(), sizeof pool_, 0) != size) {
            std::random_device random; // a signal came, or the kernel does not let this program ask it
            for (std::uint64_t& number : pool_)
                number = std::uint64_t{random()} << 32 | random();
        }
        used_ = 0;
    }

    std::array<std::uint64_t, 32> pool_{}; ///< getrandom() gives up to 256 bytes without a break
    std::size_t used_ = pool_.size();
};

} // namespace mirovane
