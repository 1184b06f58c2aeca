#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"
#include "platform/files/OpenFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// What a temporary file is that is there already.
enum class Leftover {
    PerhapsInUse, ///< by another station, unless its lock can be had or it is old
    Stale,        ///< everybody who makes one needs the lock that this station holds: its maker was killed
};

/// One replacement of a file by way of a temporary file beside it: written whole, flushed, locked, renamed
/// over the old one. There is one temporary name for a datafile. Whoever finds it without a living owner
/// removes it, so savers that were killed leave at most one such file, until the next save. A stale one is
/// removed without opening it: it may belong to another user, who lets nobody read half a datafile.
class CSafeReplace {
public:
    /// A new file at `path`, which has no symbolic link in its last part.
    CSafeReplace(CFileCalls& calls, std::string path, Leftover leftover)
        : calls_(calls), path_(std::move(path)), leftover_(leftover) {}

    /// In place of the file that is open as `oldFile`, with its mode, its owner and its access list.
    CSafeReplace(CFileCalls& calls, std::string path, int oldFile, const struct stat& old, Leftover leftover)
        : calls_(calls), path_(std::move(path)), oldFile_(oldFile), old_(&old), leftover_(leftover) {}

    /// A new file at `path` with the content that the open file will have, for whoever may use that one, as
    /// far as this user can arrange it; where he cannot, for himself.
    static CSafeReplace copyFor(CFileCalls& calls, std::string path, int file, const struct stat& status) {
        CSafeReplace copy(calls, std::move(path), file, status, Leftover::Stale);
        copy.isCopy_ = true;
        return copy;
    }

    /// The new file, open and under an exclusive lock; the old one is untouched when it is not there.
    std::optional<COpenFile> run(std::string_view content);

    /// Why run() gave nothing.
    const FileError& error() const { return error_; }

    /// What keeps a new file from taking the old one's place, while the file itself may still be writable.
    enum class Obstacle {
        None,
        Folder, ///< takes no new file or no new name
        Access, ///< owner, group, mode or access list cannot be kept: the file would be taken from its people
    };
    Obstacle obstacle() const { return obstacle_; }

    /// A hidden name beside `name`.
    static std::string hiddenName(const std::string& name, std::string_view suffix);

private:
    std::optional<COpenFile> makeTemporary();
    bool removeLeftover();
    bool keepAccess(int fd);
    bool shareAsCopy(int fd);
    bool removeStale();
    bool takeNewName();
    bool putInPlace();
    void failed(int code);

    CFileCalls& calls_;
    std::string path_;
    int oldFile_ = -1;
    const struct stat* old_ = nullptr;
    std::string temporary_;
    FileError error_;
    Leftover leftover_;
    bool isCopy_ = false;
    Obstacle obstacle_ = Obstacle::None;
};

} // namespace mirovane
