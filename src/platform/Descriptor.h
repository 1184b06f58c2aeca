#pragma once

#include <unistd.h>
#include <utility>

namespace mirovane {

/// Owns an open file descriptor; -1 means none.
class CDescriptor {
public:
    CDescriptor() = default;
    explicit CDescriptor(int value) : value_(value) {}
    CDescriptor(CDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~CDescriptor() { close(); }

    int get() const { return value_; }
    void close() {
        if (value_ >= 0)
            ::close(std::exchange(value_, -1));
    }
    explicit operator bool() const { return value_ >= 0; }

private:
    int value_ = -1;
};

} // namespace mirovane
