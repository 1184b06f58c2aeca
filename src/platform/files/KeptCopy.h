#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"

#include <optional>
#include <string>

namespace mirovane {

/// A copy of a datafile as it is, beside it, for whoever wants to undo what is done to it: with its
/// mode, its access list and, where the system allows it, its owner. It goes with the object unless it is
/// kept, so that what fails leaves nothing behind.
class CKeptCopy {
public:
    CKeptCopy() = default;
    CKeptCopy(const CKeptCopy&) = delete;
    CKeptCopy& operator=(const CKeptCopy&) = delete;
    ~CKeptCopy();

    /// Copies the file to `path` + `suffix`, or to the first of suffix-2, suffix-3, ... where nothing is yet:
    /// an earlier copy is never overwritten. A copy that this object made before is replaced.
    std::optional<FileError> make(const std::string& path, const std::string& suffix);

    void keep() { kept_ = true; }

    /// Where the copy is; empty while there is none.
    const std::string& path() const { return copy_; }

private:
    std::optional<FileError> fill(const std::string& source);
    void forget();

    CFileCalls calls_;
    std::string copy_;
    bool kept_ = false;
};

} // namespace mirovane
