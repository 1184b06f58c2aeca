#pragma once

#include "platform/files/Files.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// Writes exports on a thread of its own: a share that went away holds its callers for minutes, and
/// that must not be the window. While a write hangs only the latest text waits behind it. The functions are
/// called on the main thread.
class CExportWriter {
public:
    struct Job {
        std::string target;
        std::string datafile;
        std::string text;
    };

    /// How long the end waits for what is still to be written, so that a program ends within five seconds of
    /// SIGTERM, with a save to the same dead share.
    static constexpr std::chrono::milliseconds usualPatienceAtEnd{500};

    /// `files` is used on the writing thread only.
    explicit CExportWriter(std::shared_ptr<Files> files,
                           std::chrono::milliseconds patienceAtEnd = usualPatienceAtEnd);

    /// Waits a moment for what is still to be written. A write that hangs longer is given up: its thread ends
    /// when the share answers, or with the process.
    ~CExportWriter();
    CExportWriter(const CExportWriter&) = delete;
    CExportWriter& operator=(const CExportWriter&) = delete;

    /// Returns once the job is written or has failed, after `patience` in any case, and at once while an
    /// earlier one still hangs.
    void write(Job job, std::chrono::milliseconds patience);

    /// Until no write is under way any more, or `patience` is over.
    void wait(std::chrono::milliseconds patience);

    /// A write has not come to an end, or waits for one.
    bool hangs() const;

    /// Why the latest write failed, or that it has not come to an end; nothing when it was done.
    std::optional<FileError> error() const;

private:
    struct Shared;

    std::shared_ptr<Shared> shared_;
    std::chrono::milliseconds patienceAtEnd_;
};

} // namespace mirovane
