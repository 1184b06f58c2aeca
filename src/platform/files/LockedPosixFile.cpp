#include "platform/files/LockedPosixFile.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FilePaths.h"
#include "platform/files/InPlaceWrite.h"
#include "platform/files/SafeReplace.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <utility>

namespace mirovane {

CLockedPosixFile::CLockedPosixFile(CFileCalls& calls, std::string path, std::string target,
                                   std::string backupFolder, COpenFile file, const struct stat& status,
                                   bool locked)
    : calls_(calls),
      path_(std::move(path)),
      target_(std::move(target)),
      backupFolder_(std::move(backupFolder)),
      file_(std::move(file)),
      status_(status),
      leftover_(locked ? Leftover::Stale : Leftover::PerhapsInUse) {}

FileIdentity CLockedPosixFile::identity() const {
    return identityFrom(status_);
}

Result<std::string, FileError> CLockedPosixFile::read() {
    if (!file_)
        return fileError("cannot read", path_, ENOENT);
    std::optional<std::string> content = readWhole(calls_, file_.fd());
    if (!content)
        return fileError("cannot read", path_, errno);
    return std::move(*content);
}

Result<FileIdentity, FileError> CLockedPosixFile::replace(std::string_view content) {
    if (content.size() > largestFile)
        return fileError("cannot write", path_, EFBIG);
    CSafeReplace replacement = file_ ? CSafeReplace(calls_, target_, file_.fd(), status_, leftover_)
                                     : CSafeReplace(calls_, target_, Leftover::PerhapsInUse);
    std::optional<COpenFile> made = replacement.run(content);
    const auto obstacle = replacement.obstacle();
    if (!made && file_ && obstacle != CSafeReplace::Obstacle::None)
        return writeInPlace(content, obstacle == CSafeReplace::Obstacle::Access);
    if (!made && obstacle == CSafeReplace::Obstacle::Folder)
        made = createDirectly(content);
    if (!made)
        return replacement.error();
    const struct stat before = status_;
    const bool hadFile = static_cast<bool>(file_);
    file_ = std::move(*made);
    if (calls_.statusOf(file_.fd(), status_) != 0)
        return fileError("cannot read", path_, errno);
    if (hadFile)
        tellApartFrom(before);
    if (!flushFolder(calls_, folderOf(target_)))
        return fileError("cannot write", path_, errno);
    return identity();
}

/// A share that knows neither a link nor a rename that spares what is there can still make a new file under
/// its own name. Nothing is lost when that breaks off: there was no file before.
std::optional<COpenFile> CLockedPosixFile::createDirectly(std::string_view content) {
    COpenFile file(calls_, calls_.openFile(target_, O_RDWR | O_CREAT | O_EXCL, 0666));
    if (!file)
        return std::nullopt;
    if (writeWhole(calls_, file.fd(), content) && calls_.flush(file.fd()) == 0)
        return file;
    file = COpenFile();
    calls_.remove(target_);
    return std::nullopt;
}

/// Two saves within one granule of the file system's clock bear the same time, and a number that the first
/// one gave back may come again: a station that knows the file from before both would take it for unchanged.
/// So time goes on with every save, if only by a little. A file that bears a time far ahead is left behind.
void CLockedPosixFile::tellApartFrom(const struct stat& before) {
    constexpr std::time_t longestGranule = 2;
    constexpr long step = 1000; // what file servers keep is not finer
    struct timespec next = before.st_mtim;
    const struct timespec& now = status_.st_mtim;
    const bool later = now.tv_sec > next.tv_sec || (now.tv_sec == next.tv_sec && now.tv_nsec > next.tv_nsec);
    if (later || next.tv_sec - now.tv_sec > longestGranule)
        return;
    next.tv_nsec += step;
    if (next.tv_nsec >= 1'000'000'000) {
        next.tv_nsec -= 1'000'000'000;
        ++next.tv_sec;
    }
    if (calls_.setModified(file_.fd(), next) == 0)
        calls_.statusOf(file_.fd(), status_);
}

Result<FileIdentity, FileError> CLockedPosixFile::writeInPlace(std::string_view content, bool besideIt) {
    CInPlaceWrite writing = besideIt && CInPlaceWrite::mayLieBeside(calls_, target_)
                                ? CInPlaceWrite::beside(calls_, target_)
                                : CInPlaceWrite::inFolder(calls_, backupFolder_, target_);
    const struct stat before = status_;
    const std::optional<FileError> error = writing.run(file_.fd(), content);
    if (calls_.statusOf(file_.fd(), status_) != 0)
        return fileError("cannot read", path_, errno);
    tellApartFrom(before);
    if (error)
        return *error;
    return identity();
}

} // namespace mirovane
