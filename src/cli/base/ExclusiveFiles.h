#pragma once

#include "platform/files/Files.h"

#include <memory>
#include <string>

namespace mirovane {

/// Files whose first look at a file, even to read it, takes its write lock and keeps it until the object
/// ends: a read and the save that builds on it become one step that no other station can come between. For
/// one command on one datafile.
class CExclusiveFiles final : public Files {
public:
    explicit CExclusiveFiles(Files& files) : files_(files) {}

    Result<FileIdentity, FileError> status(const std::string& path) override { return files_.status(path); }

    /// A file other than the first is locked as always.
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override;

private:
    class Borrowed;

    Files& files_;
    std::string path_; ///< of the held file
    std::unique_ptr<LockedFile> held_;
};

} // namespace mirovane
