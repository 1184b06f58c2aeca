#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/Files.h"
#include "platform/files/OpenFile.h"
#include "platform/files/SafeReplace.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// The datafile as CPosixFiles locked it.
class CLockedPosixFile final : public LockedFile {
public:
    /// `path` is what the user calls it, `target` where all symbolic links lead. A closed `file`
    /// means that there is no file yet. `locked` false: the file system has no locks.
    CLockedPosixFile(CFileCalls& calls, std::string path, std::string target, std::string backupFolder,
                     COpenFile file, const struct stat& status, bool locked);

    bool exists() const override { return static_cast<bool>(file_); }
    FileIdentity identity() const override;
    Result<std::string, FileError> read() override;
    Result<FileIdentity, FileError> replace(std::string_view content) override;

private:
    std::optional<COpenFile> createDirectly(std::string_view content);
    Result<FileIdentity, FileError> writeInPlace(std::string_view content, bool besideIt);
    void tellApartFrom(const struct stat& before);

    CFileCalls& calls_;
    std::string path_;
    std::string target_;
    std::string backupFolder_;
    COpenFile file_;
    struct stat status_;
    Leftover leftover_; ///< what a temporary file beside it is
};

} // namespace mirovane
