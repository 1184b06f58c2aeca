#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// The second best way to replace a file, for folders that take no new file: over the old bytes. Before the
/// first of them is touched, complete copies of the old and of the new content lie in the backup folder; they
/// go when the write is done. Where it was cut off, the next lock of the same user on that file finds them
/// and completes the write.
class CInPlaceWrite {
public:
    CInPlaceWrite(CFileCalls& calls, const std::string& backupFolder, std::string target);

    /// Through `fd`, which is open for writing under an exclusive lock. After an error the file is what it
    /// was, or the sentence says where its copy is kept.
    std::optional<FileError> run(int fd, std::string_view content);

    /// True when an earlier write may have been cut off.
    bool leftBehind() const;

    /// Completes it, unless somebody else has written the file since. Needs the same lock as run().
    std::optional<FileError> recover(int fd);

private:
    bool makeBackupFolder() const;
    bool isOurFolder() const;
    bool keepCopy(const std::string& copy, std::string_view content);
    bool overwrite(int fd, std::string_view content, std::size_t sizeNow);
    std::optional<std::string> readCopy(const std::string& copy) const;
    void forgetCopies(bool keepOld);

    CFileCalls& calls_;
    std::string folder_;
    std::string target_;
    std::string oldCopy_;
    std::string newCopy_;
};

} // namespace mirovane
