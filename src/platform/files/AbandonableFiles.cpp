#include "platform/files/AbandonableFiles.h"

#include "platform/BlockedSignals.h"
#include "platform/files/FilePaths.h"

#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace mirovane {

struct CAbandonableFiles::Shared {
    Shared(std::shared_ptr<Files> its, const Patience& span) : files(std::move(its)), patience(span) {}

    const std::shared_ptr<Files> files;
    const Patience patience;
    CAbandonableCalls calls{{1, 100, patience.signOfLife}};
    CAbandonableCalls pulse{{1, 100, patience.signOfLife}};

    using Status = Result<FileIdentity, FileError>;

    /// Where a thread puts what it found out, perhaps when nobody waits for it any more.
    template <typename Value>
    class CAnswer {
    public:
        void put(Value its) {
            const std::lock_guard lock(mutex_);
            value_.emplace(std::move(its));
        }
        std::optional<Value> take() {
            const std::lock_guard lock(mutex_);
            return std::exchange(value_, std::nullopt);
        }

    private:
        std::mutex mutex_;
        std::optional<Value> value_;
    };

    /// A question that was not answered in time.
    struct Late {
        std::string path;
        std::shared_ptr<CAnswer<Status>> answer;
    };
    Late late;

    static FileError notAnswering(const std::string& path) {
        return {FileError::Kind::NotAnswering, ETIMEDOUT, path + ": its share does not answer"};
    }

    /// `work` gives a Result of FileError.
    template <typename Work>
    auto run(const std::string& path, std::chrono::milliseconds span, Work work)
        -> std::invoke_result_t<Work> {
        using Value = std::invoke_result_t<Work>;
        const auto answer = std::make_shared<CAnswer<Value>>();
        std::stop_source gone;
        const std::jthread watcher = span > patience.signOfLife ? watch(path, gone) : std::jthread();
        if (ask(path, span, answer, std::move(work), gone.get_token()))
            return *answer->take();
        return notAnswering(path);
    }

    /// While something long is under way: looks from time to time whether the folder still answers at all, so
    /// that nobody waits to the end for a share that went away in the middle. A line that the transfer fills
    /// is given more time for that. Without a thread to spare nobody looks.
    std::jthread watch(const std::string& path, const std::stop_source& gone) {
        const CBlockedSignals noSignals;
        try {
            return std::jthread([this, path, gone](const std::stop_token& over) mutable {
                std::mutex mutex;
                std::condition_variable_any ending;
                std::unique_lock lock(mutex);
                const auto never = [] {
                    return false;
                };
                do
                    ending.wait_for(lock, over, patience.signOfLife, never);
                while (!over.stop_requested() && looksAlive(path, over));
                gone.request_stop();
            });
        } catch (const std::system_error&) {
            return {};
        }
    }

    bool looksAlive(const std::string& path, const std::stop_token& over) {
        const auto look = [its = files, path] {
            (void)its->status(path);
        };
        return pulse.run(folderOf(path), look, 3 * patience.signOfLife, over) == CAbandonableCalls::End::Done;
    }

    template <typename Value, typename Work>
    bool ask(const std::string& path, std::chrono::milliseconds span,
             const std::shared_ptr<CAnswer<Value>>& answer, Work work, const std::stop_token& stop = {}) {
        const auto call = [answer, work = std::move(work)]() mutable {
            answer->put(work());
        };
        return calls.run(folderOf(path), std::move(call), span, stop) == CAbandonableCalls::End::Done;
    }

    Status status(const std::string& path, std::chrono::milliseconds span) {
        return run(
            path, span, [its = files, path] { return its->status(path); });
    }
};

namespace {

class CAbandonableLock final : public LockedFile {
public:
    CAbandonableLock(std::shared_ptr<CAbandonableFiles::Shared> shared, std::string path,
                     std::shared_ptr<LockedFile> file)
        : shared_(std::move(shared)),
          path_(std::move(path)),
          file_(std::move(file)),
          exists_(file_->exists()),
          identity_(file_->identity()) {}

    /// To close a file may hang, too.
    ~CAbandonableLock() override {
        shared_->calls.run(
            folderOf(path_), [file = std::move(file_)]() mutable { file.reset(); },
            shared_->patience.transfer);
    }

    bool exists() const override { return exists_; }
    FileIdentity identity() const override { return identity_; }

    Result<std::string, FileError> read() override {
        return shared_->run(
            path_, shared_->patience.transfer, [file = file_] { return file->read(); });
    }

    Result<FileIdentity, FileError> replace(std::string_view content) override {
        auto replaced =
            shared_->run(path_, shared_->patience.transfer,
                         [file = file_, bytes = std::string(content)] { return file->replace(bytes); });
        if (replaced) {
            exists_ = true;
            identity_ = replaced.value();
        }
        return replaced;
    }

private:
    std::shared_ptr<CAbandonableFiles::Shared> shared_;
    std::string path_;
    std::shared_ptr<LockedFile> file_;
    bool exists_;
    FileIdentity identity_;
};

} // namespace

CAbandonableFiles::CAbandonableFiles(std::shared_ptr<Files> files, const Patience& patience)
    : shared_(std::make_shared<Shared>(std::move(files), patience)) {}

CAbandonableFiles::~CAbandonableFiles() = default;

Result<FileIdentity, FileError> CAbandonableFiles::status(const std::string& path) {
    Shared::Late& late = shared_->late;
    if (late.path == path && late.answer)
        if (auto answer = late.answer->take()) {
            late = {};
            return *answer;
        }
    const auto answer = std::make_shared<Shared::CAnswer<Shared::Status>>();
    const auto work = [files = shared_->files, path] {
        return files->status(path);
    };
    if (shared_->ask(path, shared_->patience.status, answer, work)) {
        late = {}; // this one is newer
        return *answer->take();
    }
    if (late.path != path || !late.answer) // else that one is still on its way
        late = {path, answer};
    return Shared::notAnswering(path);
}

Result<std::unique_ptr<LockedFile>, FileError>
CAbandonableFiles::lock(const std::string& path, FileAccess access, std::chrono::milliseconds patience) {
    shared_->late = {};
    // Some shares are connected by the first look at them, and some disks wake up.
    const auto span = access == FileAccess::Read ? shared_->patience.transfer : shared_->patience.signOfLife;
    if (const auto alive = shared_->status(path, span);
        !alive && alive.error().kind == FileError::Kind::NotAnswering)
        return alive.error();
    auto locked = shared_->run(
        path, patience + shared_->patience.transfer,
        [files = shared_->files, path, access, patience] { return files->lock(path, access, patience); });
    if (!locked)
        return locked.error();
    return std::unique_ptr<LockedFile>(std::make_unique<CAbandonableLock>(
        shared_, path, std::shared_ptr<LockedFile>(std::move(locked.value()))));
}

} // namespace mirovane
