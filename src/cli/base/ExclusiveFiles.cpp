#include "cli/base/ExclusiveFiles.h"

namespace mirovane {

namespace {

/// A script can wait longer than a window: twenty commands that start together queue up for their turn.
constexpr std::chrono::seconds commandPatience{30};

} // namespace

class CExclusiveFiles::Borrowed final : public LockedFile {
public:
    explicit Borrowed(CExclusiveFiles& owner) : owner_(owner) {}

    bool exists() const override { return owner_.held_->exists(); }
    FileIdentity identity() const override { return owner_.held_->identity(); }
    Result<std::string, FileError> read() override { return owner_.held_->read(); }

    Result<FileIdentity, FileError> replace(std::string_view content) override {
        // The lock keeps other stations out, not a program that knows nothing of it.
        const auto now = owner_.files_.status(owner_.path_);
        if (exists() && !(now && now.value() == identity()))
            return FileError{FileError::Kind::Changed, 0,
                             "cannot write " + owner_.path_ + ": another program keeps changing it"};
        return owner_.held_->replace(content);
    }

private:
    CExclusiveFiles& owner_;
};

Result<std::unique_ptr<LockedFile>, FileError>
CExclusiveFiles::lock(const std::string& path, FileAccess access, std::chrono::milliseconds patience) {
    if (held_ && path != path_)
        return files_.lock(path, access, patience);
    if (!held_) {
        auto taken = files_.lock(path, FileAccess::Write, commandPatience);
        if (!taken)
            return taken.error();
        held_ = std::move(taken.value());
        path_ = path;
    }
    return std::unique_ptr<LockedFile>(std::make_unique<Borrowed>(*this));
}

} // namespace mirovane
