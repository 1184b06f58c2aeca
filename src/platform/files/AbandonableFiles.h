#pragma once

#include "platform/AbandonableCalls.h"
#include "platform/files/Files.h"

#include <memory>
#include <string>
#include <utility>

namespace mirovane {

/// The datafile's file system for a program that must go on when the share hangs. Every call is made on
/// another thread and given up after a while; until it is over, all further calls to that folder fail at
/// once, with the kind NotAnswering.
///
/// Whoever asks from time to time what a file is like waits for no more than a frame: an answer that comes
/// later is the answer to the next question, unless the file was locked in between. Before anything long is
/// begun the folder is asked for a sign of life, so that a save to a share that went away costs half a
/// second, once; one that goes away in the middle costs two.
///
/// What was given up may be done later all the same: a lock is then let go, and a new content counts as
/// another station's save, which is merged with what is in memory. Main thread.
class CAbandonableFiles final : public Files {
public:
    /// A full datafile over a slow line takes seconds.
    struct Patience {
        std::chrono::milliseconds status{40};
        std::chrono::milliseconds signOfLife{500};
        std::chrono::milliseconds transfer{5000};
    };

    explicit CAbandonableFiles(std::shared_ptr<Files> files)
        : CAbandonableFiles(std::move(files), Patience()) {}
    CAbandonableFiles(std::shared_ptr<Files> files, const Patience& patience);
    ~CAbandonableFiles() override;

    Result<FileIdentity, FileError> status(const std::string& path) override;
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override;

    struct Shared;

private:
    std::shared_ptr<Shared> shared_;
};

} // namespace mirovane
