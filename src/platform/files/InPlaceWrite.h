#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace mirovane {

/// The second best way to replace a file, where no new file can take its place: over the old bytes. Before
/// the first of them is touched, there are complete copies of the old and of the new content; they go when
/// the write is done. Where it was cut off, the next lock that finds the copies completes the write.
///
/// The copies lie beside the file where its folder takes them: then every colleague completes the write of
/// one who was killed. Else they lie in this user's backup folder, and wait for him.
class CInPlaceWrite {
public:
    static CInPlaceWrite beside(CFileCalls& calls, const std::string& target);
    static CInPlaceWrite inFolder(CFileCalls& calls, const std::string& backupFolder,
                                  const std::string& target);

    /// Copies in a folder that many write to and where nobody may touch what is another's could come from
    /// somebody who may not write the file: they must not lie there.
    static bool mayLieBeside(CFileCalls& calls, const std::string& target);

    /// Through `fd`, which is open for writing under an exclusive lock. After an error the file is what it
    /// was, or the sentence says where its copy is kept.
    std::optional<FileError> run(int fd, std::string_view content);

    /// True when an earlier write may have been cut off. Looks where `beside` and `inFolder` keep copies.
    bool leftBehind() const;

    /// The file holds some of the old and some of the new content.
    bool isHalfWritten(int fd) const;

    /// Completes it, unless somebody else has written the file since. Needs the same lock as run().
    std::optional<FileError> recover(int fd);

private:
    CInPlaceWrite(CFileCalls& calls, std::string folder, std::string target, bool beside)
        : calls_(calls), folder_(std::move(folder)), target_(std::move(target)), beside_(beside) {}
    FileError noCopies(int code) const;
    bool keepCopy(const std::string& copy, std::string_view content, int fd);
    bool overwrite(int fd, std::string_view content, std::size_t sizeNow);
    std::optional<std::string> readCopy(const std::string& copy) const;
    void forgetCopies(bool keepOld);

    CFileCalls& calls_;
    std::string folder_;
    std::string target_;
    bool beside_;
    std::string oldCopy_;
    std::string newCopy_;
};

} // namespace mirovane
