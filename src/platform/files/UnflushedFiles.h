#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/PosixFiles.h"
#include "platform/files/StateFolder.h"

#include <memory>
#include <string>

namespace mirovane {

/// Replaces files whole for every reader, but leaves it to the system when they reach the disk: for what can
/// be made again after a power failure. To wait for the disk takes longer than all the rest.
class CUnflushedFiles final : public Files {
public:
    Result<FileIdentity, FileError> status(const std::string& path) override { return files_.status(path); }
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override {
        return files_.lock(path, access, patience);
    }

private:
    class CCalls final : public CFileCalls {
        int flush(int) override { return 0; }
    };

    CCalls calls_;
    CPosixFiles files_{calls_, defaultStateFolder()};
};

} // namespace mirovane
