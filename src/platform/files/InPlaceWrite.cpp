#include "platform/files/InPlaceWrite.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FilePaths.h"
#include "platform/files/OpenFile.h"
#include "platform/files/SafeReplace.h"
#include "platform/files/StateFolder.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace mirovane {

namespace {

constexpr std::size_t longestStem = 100;

/// Whether `found` can be what a cut-off write of `now` over `before` leaves: every byte is the new one, or
/// the old one, or a reserved zero behind the old end.
bool isCutOff(std::string_view found, std::string_view before, std::string_view now) {
    if (found.size() < std::min(before.size(), now.size()) ||
        found.size() > std::max(before.size(), now.size()))
        return false;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const bool isNew = i < now.size() && found[i] == now[i];
        const bool isOld = found[i] == (i < before.size() ? before[i] : '\0');
        if (!isNew && !isOld)
            return false;
    }
    return true;
}

} // namespace

CInPlaceWrite CInPlaceWrite::beside(CFileCalls& calls, const std::string& target) {
    CInPlaceWrite writing(calls, folderOf(target), target, true);
    writing.oldCopy_ = writing.folder_ + "/" + CSafeReplace::hiddenName(nameOf(target), ".before");
    writing.newCopy_ = writing.folder_ + "/" + CSafeReplace::hiddenName(nameOf(target), ".after");
    return writing;
}

CInPlaceWrite CInPlaceWrite::inFolder(CFileCalls& calls, const std::string& backupFolder,
                                      const std::string& target) {
    CInPlaceWrite writing(calls, backupFolder, target, false);
    const std::string stem = nameOf(target).substr(0, longestStem) + "-" + fingerprintOf(target);
    writing.oldCopy_ = backupFolder + "/" + stem + ".before";
    writing.newCopy_ = backupFolder + "/" + stem + ".after";
    return writing;
}

bool CInPlaceWrite::mayLieBeside(CFileCalls& calls, const std::string& target) {
    struct stat folder = {};
    return calls.statusAt(folderOf(target), folder) == 0 && (folder.st_mode & S_ISVTX) == 0;
}

bool CInPlaceWrite::keepCopy(const std::string& copy, std::string_view content, int fd) {
    struct stat status = {};
    if (calls_.statusOf(fd, status) != 0)
        return false;
    calls_.remove(copy);
    CSafeReplace replacement = beside_ ? CSafeReplace::copyFor(calls_, copy, fd, status)
                                       : CSafeReplace(calls_, copy, Leftover::Stale);
    const bool made = replacement.run(content).has_value() && flushFolder(calls_, folder_);
    if (!made && replacement.error().code != 0)
        errno = replacement.error().code;
    return made;
}

std::optional<FileError> CInPlaceWrite::run(int fd, std::string_view content) {
    const std::optional<std::string> before = readWhole(calls_, fd);
    if (!before)
        return fileError("cannot read", target_, errno);
    if (!beside_ && !makeStateFolder(calls_, folder_))
        return noCopies(errno);
    // The old copy comes last: when it is there, both are whole.
    if (!keepCopy(newCopy_, content, fd) || !keepCopy(oldCopy_, *before, fd)) {
        FileError error = noCopies(errno);
        calls_.remove(newCopy_);
        return error;
    }
    if (overwrite(fd, content, before->size())) {
        forgetCopies(false);
        return std::nullopt;
    }
    FileError error = fileError("cannot write", target_, errno);
    if (overwrite(fd, *before, std::max(before->size(), content.size())))
        forgetCopies(false);
    else
        error.sentence += "; the datafile as it was is kept as " + oldCopy_;
    return error;
}

FileError CInPlaceWrite::noCopies(int code) const {
    FileError error = fileError("cannot write", target_, code);
    error.sentence += " (no new file can take its place, and the copy that a write in place needs could not "
                      "be kept in " +
                      folder_ + ")";
    return error;
}

/// Room first, so that a full disk shows before any byte is lost; the end last.
bool CInPlaceWrite::overwrite(int fd, std::string_view content, std::size_t sizeNow) {
    if (content.size() > sizeNow && calls_.allocate(fd, static_cast<off_t>(content.size())) != 0) {
        const int code = errno;
        calls_.truncate(fd, static_cast<off_t>(sizeNow));
        errno = code;
        return false;
    }
    return writeWhole(calls_, fd, content) && calls_.truncate(fd, static_cast<off_t>(content.size())) == 0 &&
           calls_.flush(fd) == 0;
}

bool CInPlaceWrite::leftBehind() const {
    struct stat status = {};
    if (calls_.statusAt(oldCopy_, status) != 0 ||
        !(beside_ ? mayLieBeside(calls_, target_) : isOwnFolder(calls_, folder_)))
        return false;
    // Copies that only their maker may read wait for him.
    return COpenFile(calls_, calls_.openFile(oldCopy_, O_RDONLY, 0)) &&
           COpenFile(calls_, calls_.openFile(newCopy_, O_RDONLY, 0));
}

bool CInPlaceWrite::isHalfWritten(int fd) const {
    const std::optional<std::string> before = readCopy(oldCopy_);
    const std::optional<std::string> now = readCopy(newCopy_);
    const std::optional<std::string> found = readWhole(calls_, fd);
    return before && now && found && *found != *before && *found != *now && isCutOff(*found, *before, *now);
}

std::optional<std::string> CInPlaceWrite::readCopy(const std::string& copy) const {
    const COpenFile file(calls_, calls_.openFile(copy, O_RDONLY, 0));
    return file ? readWhole(calls_, file.fd()) : std::nullopt;
}

std::optional<FileError> CInPlaceWrite::recover(int fd) {
    const std::optional<std::string> before = readCopy(oldCopy_);
    const std::optional<std::string> now = readCopy(newCopy_);
    const std::optional<std::string> found = readWhole(calls_, fd);
    if (!found)
        return fileError("cannot read", target_, errno);
    if (!before || !now)
        return std::nullopt;
    const bool whole = *found == *before || *found == *now;
    if (!whole && !isCutOff(*found, *before, *now)) {
        forgetCopies(true);
        return std::nullopt;
    }
    if (!whole && !overwrite(fd, *now, found->size())) {
        FileError error = fileError("cannot write", target_, errno);
        error.sentence +=
            "; its last save was cut off, whole copies are kept as " + oldCopy_ + " and " + newCopy_;
        return error;
    }
    forgetCopies(false);
    return std::nullopt;
}

/// `keepOld`: the file has somebody else's content; the copy stays under a name that no recovery looks
/// for.
void CInPlaceWrite::forgetCopies(bool keepOld) {
    if (keepOld)
        calls_.rename(oldCopy_, oldCopy_ + "-kept");
    else
        calls_.remove(oldCopy_);
    calls_.remove(newCopy_);
}

} // namespace mirovane
