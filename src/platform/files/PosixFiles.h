#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"

#include <memory>
#include <string>

namespace mirovane {

/// Files of a POSIX system. The lock is an advisory record lock on the datafile itself, which network file
/// systems pass on to their server. A replaced file is a new file under the old name: other hard links of the
/// datafile keep the old content (so does a snapshot made of hard links), a symbolic link keeps pointing at
/// the new one.
class CPosixFiles final : public Files {
public:
    CPosixFiles();

    /// `calls` outlives this object. `backupFolder` takes the copies that a write in place needs.
    CPosixFiles(CFileCalls& calls, std::string backupFolder);
    ~CPosixFiles() override;

    Result<FileIdentity, FileError> status(const std::string& path) override;
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override;

private:
    std::unique_ptr<CFileCalls> ownCalls_;
    CFileCalls& calls_;
    std::string backupFolder_;
};

} // namespace mirovane
