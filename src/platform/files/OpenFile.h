#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace mirovane {

/// An open file and, with it, the locks taken through it; both end with the object.
class COpenFile {
public:
    COpenFile() = default;
    COpenFile(CFileCalls& calls, int fd) : calls_(&calls), fd_(fd) {}
    COpenFile(COpenFile&& other) noexcept : calls_(other.calls_), fd_(std::exchange(other.fd_, -1)) {}
    COpenFile& operator=(COpenFile&& other) noexcept {
        if (this != &other) {
            close();
            calls_ = other.calls_;
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    ~COpenFile() { close(); }

    explicit operator bool() const { return fd_ >= 0; }
    int fd() const { return fd_; }
    void close();

private:
    CFileCalls* calls_ = nullptr;
    int fd_ = -1;
};

/// Hundreds of times what a full datafile takes. A larger one is not a datafile, and to read it would bring
/// the computer to its knees before anybody could say so.
constexpr std::size_t largestFile = std::size_t{1} << 31;

/// The whole content; nothing, and errno, when it cannot be read.
std::optional<std::string> readWhole(CFileCalls& calls, int fd);

/// All of it from offset 0 on; false, and errno, when not all could be written.
bool writeWhole(CFileCalls& calls, int fd, std::string_view content);

/// The same behind the first `size` bytes.
bool appendWhole(CFileCalls& calls, int fd, off_t size, std::string_view content);

/// Makes the names in a folder durable. False, and errno, only where the disk failed: a folder that cannot be
/// opened or flushed at all (some network file systems) leaves nothing that could be done better.
bool flushFolder(CFileCalls& calls, const std::string& folder);

/// Both name the same file at this moment.
bool sameFile(const struct stat& a, const struct stat& b);

/// True where the file system knows no locks: then only the checks of identity keep stations apart.
bool locksUnsupported(int code);

} // namespace mirovane
