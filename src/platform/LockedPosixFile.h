#pragma once

#include "platform/FileCalls.h"
#include "platform/Files.h"
#include "platform/OpenFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// The datafile as PosixFiles locked it.
class LockedPosixFile final : public LockedFile {
public:
    /// `path` is what the user calls it, `target` what stands behind all symbolic links. A closed `file`
    /// means that there is none yet.
    LockedPosixFile(FileCalls& calls, std::string path, std::string target, std::string backupFolder,
                    OpenFile file, const struct stat& status);

    bool exists() const override { return static_cast<bool>(file_); }
    FileIdentity identity() const override;
    Result<std::string, FileError> read() override;
    Result<FileIdentity, FileError> replace(std::string_view content) override;

private:
    std::optional<OpenFile> createDirectly(std::string_view content);
    Result<FileIdentity, FileError> writeInPlace(std::string_view content);
    void tellApartFrom(const struct stat& before);

    FileCalls& calls_;
    std::string path_;
    std::string target_;
    std::string backupFolder_;
    OpenFile file_;
    struct stat status_;
};

} // namespace mirovane
