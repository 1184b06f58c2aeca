#include "cli/Datafiles.h"

#include "cli/ExclusiveFiles.h"
#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "platform/FilePaths.h"
#include "platform/Host.h"
#include "platform/PosixFiles.h"

namespace mirovane {

namespace {

constexpr int mostAttempts = 5;

/// A document for one command. What it reads and writes besides the datafile is nobody's: it must work the
/// same for every user and leave no settings behind.
class LooseDocument {
public:
    explicit LooseDocument(Files& files)
        : settings_(store_), log_(clock_), doc(files, clock_, log_, settings_, thisStation()) {}

private:
    SystemClock clock_;
    MemorySettingsStore store_;
    CSettings settings_;
    CMessageLog log_;

public:
    CMirovaneDoc doc;
};

/// Nothing when the file changed under the edit and another attempt may follow.
std::optional<ExitStatus> attemptEdit(Output& out, const std::string& path, const DatafileEdit& edit,
                                      bool last) {
    PosixFiles system;
    ExclusiveFiles files(system);
    LooseDocument loose(files);
    if (const auto error = loose.doc.open(path)) {
        diagnoseUnreadable(out, path, *error);
        return ExitStatus::FileFailed;
    }
    if (const auto refusal = edit(loose.doc)) {
        out.diagnose(refusal->sentence);
        return refusal->status;
    }
    const auto error = loose.doc.save();
    if (!error)
        return ExitStatus::Done;
    if (error->kind == FileError::Kind::Changed && !last)
        return std::nullopt;
    out.diagnose(error->sentence);
    return ExitStatus::FileFailed;
}

} // namespace

void diagnoseUnreadable(Output& out, const std::string& path, const Datafile::Error& error) {
    const bool namesFile = error.sentence.find(path) != std::string::npos;
    out.diagnose(namesFile ? error.sentence : "cannot read " + path + ": " + error.sentence);
}

std::optional<Datafile::Content> readDatafile(Output& out, const std::string& path) {
    PosixFiles files;
    auto file = files.lock(path, FileAccess::Read, lockPatience);
    if (!file) {
        out.diagnose(file.error().sentence);
        return std::nullopt;
    }
    auto bytes = file.value()->read();
    if (!bytes) {
        out.diagnose(bytes.error().sentence);
        return std::nullopt;
    }
    auto content = Datafile::decode(bytes.value());
    if (!content) {
        diagnoseUnreadable(out, path, content.error());
        return std::nullopt;
    }
    return std::move(content.value());
}

ExitStatus editDatafile(Output& out, const std::string& path, const DatafileEdit& edit) {
    for (int attempt = 1;; ++attempt) {
        if (const auto status = attemptEdit(out, path, edit, attempt == mostAttempts))
            return *status;
    }
}

ExitStatus viewDatafile(Output& out, const std::string& path,
                        const std::function<void(const CMirovaneDoc&)>& view) {
    PosixFiles files;
    LooseDocument loose(files);
    if (const auto error = loose.doc.open(path)) {
        diagnoseUnreadable(out, path, *error);
        return ExitStatus::FileFailed;
    }
    view(loose.doc);
    return ExitStatus::Done;
}

ExitStatus createDatafile(Output& out, const std::string& path, bool replace) {
    if (path.empty()) {
        out.diagnose("cannot create a datafile", "its name is empty");
        return ExitStatus::Usage;
    }
    PosixFiles system;
    ExclusiveFiles files(system);
    const std::string absolute = absolutePath(path);
    const auto target = files.lock(absolute, FileAccess::Write, lockPatience);
    if (!target) {
        out.diagnose(target.error().sentence);
        return ExitStatus::FileFailed;
    }
    if (target.value()->exists() && !replace) {
        out.diagnose("cannot create " + path, "it exists already; --force replaces it");
        return ExitStatus::FileFailed;
    }
    LooseDocument loose(files);
    loose.doc.newDatafile();
    if (const auto error = loose.doc.saveAs(absolute)) {
        out.diagnose(error->sentence);
        return ExitStatus::FileFailed;
    }
    return ExitStatus::Done;
}

} // namespace mirovane
