#include "station/export/ExportWriter.h"

#include "model/rows/TextExport.h"
#include "platform/BlockedSignals.h"

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace mirovane {

namespace {

/// A program that reads the file holds it for a moment at most.
constexpr std::chrono::milliseconds readerPatience{1000};

} // namespace

/// What the writer and its thread have in common; the last of them frees it.
struct CExportWriter::Shared {
    explicit Shared(std::shared_ptr<Files> its) : files(std::move(its)) {}

    const std::shared_ptr<Files> files;
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<Job> waiting;
    std::string writing; ///< target of the job under way, empty when none is
    std::optional<FileError> error;
    bool hasThread = false;
    bool ending = false;

    bool idle() const { return !waiting && writing.empty(); }

    /// False: the system has no thread to give.
    static bool startThread(const std::shared_ptr<Shared>& shared) {
        const CBlockedSignals noSignals;
        try {
            std::thread([shared] { shared->run(); }).detach();
        } catch (const std::system_error&) {
            return false;
        }
        return true;
    }

    void run() {
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return waiting || ending; });
            if (!waiting)
                return;
            const Job job = *std::exchange(waiting, std::nullopt);
            writing = job.target.empty() ? "the export" : job.target;
            lock.unlock();
            auto result = writeExport(*files, job.target, job.datafile, job.text, readerPatience);
            lock.lock();
            error = std::move(result);
            writing.clear();
            changed.notify_all();
        }
    }
};

CExportWriter::CExportWriter(std::shared_ptr<Files> files, std::chrono::milliseconds patienceAtEnd)
    : shared_(std::make_shared<Shared>(std::move(files))), patienceAtEnd_(patienceAtEnd) {}

CExportWriter::~CExportWriter() {
    std::unique_lock lock(shared_->mutex);
    shared_->changed.wait_for(lock, patienceAtEnd_, [this] { return shared_->idle(); });
    shared_->waiting.reset();
    shared_->ending = true;
    shared_->changed.notify_all();
}

void CExportWriter::write(Job job, std::chrono::milliseconds patience) {
    std::unique_lock lock(shared_->mutex);
    const bool hangs = !shared_->idle();
    if (!shared_->hasThread)
        shared_->hasThread = Shared::startThread(shared_);
    if (!shared_->hasThread) {
        shared_->error = FileError{FileError::Kind::Other, EAGAIN,
                                   "cannot write " + job.target + ": no thread can be started"};
        return;
    }
    shared_->waiting = std::move(job);
    shared_->changed.notify_all();
    if (!hangs)
        shared_->changed.wait_for(lock, patience, [this] { return shared_->idle(); });
}

void CExportWriter::wait(std::chrono::milliseconds patience) {
    std::unique_lock lock(shared_->mutex);
    shared_->changed.wait_for(lock, patience, [this] { return shared_->idle(); });
}

bool CExportWriter::hangs() const {
    const std::lock_guard lock(shared_->mutex);
    return !shared_->idle();
}

std::optional<FileError> CExportWriter::error() const {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->idle())
        return shared_->error;
    const std::string& target = shared_->writing.empty() ? shared_->waiting->target : shared_->writing;
    return FileError{FileError::Kind::Other, 0, "cannot write " + target + ": its folder does not answer"};
}

} // namespace mirovane
