#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"
#include "platform/files/OpenFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// One replacement of a file by way of a temporary file beside it: written whole, flushed, locked, renamed
/// over the old one. There is one temporary name for a datafile. Whoever finds it without a living owner (its
/// lock can be had) removes it, so savers that were killed leave at most one such file, until the next save.
class CSafeReplace {
public:
    /// A new file at `path`, which has no symbolic link in its last part.
    CSafeReplace(CFileCalls& calls, std::string path) : calls_(calls), path_(std::move(path)) {}

    /// In place of the file that is open as `oldFile`, with its mode, its owner and its access list.
    CSafeReplace(CFileCalls& calls, std::string path, int oldFile, const struct stat& old)
        : calls_(calls), path_(std::move(path)), oldFile_(oldFile), old_(&old) {}

    /// The new file, open and under an exclusive lock; the old one is untouched when it is not there.
    std::optional<COpenFile> run(std::string_view content);

    /// Why run() gave nothing.
    const FileError& error() const { return error_; }

    /// The folder does not take a new file or a new name; the file itself may still be writable.
    bool folderRefused() const { return folderRefused_; }

    static std::string temporaryName(const std::string& name);

private:
    std::optional<COpenFile> makeTemporary();
    bool removeLeftover();
    bool keepAccess(int fd);
    bool takeNewName();
    bool putInPlace();
    void failed(int code);

    CFileCalls& calls_;
    std::string path_;
    int oldFile_ = -1;
    const struct stat* old_ = nullptr;
    std::string temporary_;
    FileError error_;
    bool folderRefused_ = false;
};

} // namespace mirovane
