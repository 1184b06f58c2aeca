#include "cli/base/Datafiles.h"

#include "cli/base/ExclusiveFiles.h"
#include "model/MessageLog.h"
#include "model/datafile/DatafileLink.h"
#include "model/edit/EditDoor.h"
#include "platform/Clock.h"
#include "platform/files/FilePaths.h"
#include "platform/files/PosixFiles.h"
#include "probes/registry/ThisStation.h"

namespace mirovane {

namespace {

constexpr int mostAttempts = 5;

/// A document and its datafile for one command, without a station around them: nobody works on the devices,
/// and nobody is to be told.
class CLooseDocument final : private EditDoorHost {
public:
    explicit CLooseDocument(Files& files)
        : log_(clock_), doc(clock_, log_, thisStation()), link(doc, files, log_), door_(doc, log_, *this) {}

    /// The edit and its one save. A refused edit is not saved.
    SaveReport edit(const std::string& name, const LinkedEdit& edit, std::optional<EditRefusal>& refusal) {
        const auto change = [&](CMirovaneDoc& document) {
            refusal_ = edit(document, link);
        };
        const SaveReport report = door_.edit({EditRequest::Kind::Change, name, {}}, change);
        refusal = refusal_;
        return report;
    }

private:
    void beforeEdit(const EditRequest&) override {}
    SaveReport afterEdit(const EditRequest&, bool) override { return refusal_ ? SaveReport() : link.save(); }

    CSystemClock clock_;
    CMessageLog log_;
    std::optional<EditRefusal> refusal_;

public:
    CMirovaneDoc doc;
    CDatafileLink link;

private:
    CEditDoor door_;
};

/// Nothing when the file changed under the edit and another attempt may follow.
std::optional<ExitStatus> attemptEdit(COutput& out, const std::string& path, const std::string& name,
                                      const LinkedEdit& edit, bool last) {
    CPosixFiles system;
    CExclusiveFiles files(system);
    CLooseDocument loose(files);
    if (const auto error = loose.link.open(path)) {
        diagnoseUnreadable(out, path, *error);
        return ExitStatus::FileFailed;
    }
    std::optional<EditRefusal> refusal;
    const SaveReport report = loose.edit(name, edit, refusal);
    if (refusal) {
        if (!refusal->sentence.empty())
            out.diagnose(refusal->sentence);
        return refusal->status;
    }
    if (!report.failed())
        return ExitStatus::Done;
    if (report.error->kind == FileError::Kind::Changed && !last)
        return std::nullopt;
    out.diagnose(report.error->sentence);
    return ExitStatus::FileFailed;
}

} // namespace

void diagnoseUnreadable(COutput& out, const std::string& path, const Datafile::Error& error) {
    const bool namesFile = error.sentence.find(path) != std::string::npos;
    out.diagnose(namesFile ? error.sentence : "cannot read " + path + ": " + error.sentence);
}

std::optional<Datafile::Content> readDatafile(COutput& out, const std::string& path) {
    CPosixFiles files;
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

ExitStatus editDatafile(COutput& out, const std::string& path, const std::string& name,
                        const DatafileEdit& edit) {
    return editDatafile(out, path, name, LinkedEdit([&edit](CMirovaneDoc& document, CDatafileLink&) {
                            return edit(document);
                        }));
}

ExitStatus editDatafile(COutput& out, const std::string& path, const std::string& name,
                        const LinkedEdit& edit) {
    for (int attempt = 1;; ++attempt)
        if (const auto status = attemptEdit(out, path, name, edit, attempt == mostAttempts))
            return *status;
}

ExitStatus viewDatafile(COutput& out, const std::string& path,
                        const std::function<void(const CMirovaneDoc&)>& view) {
    CPosixFiles files;
    CLooseDocument loose(files);
    if (const auto error = loose.link.open(path)) {
        diagnoseUnreadable(out, path, *error);
        return ExitStatus::FileFailed;
    }
    view(loose.doc);
    return ExitStatus::Done;
}

ExitStatus createDatafile(COutput& out, const std::string& path, bool replace) {
    if (path.empty()) {
        out.diagnose("cannot create a datafile", "its name is empty");
        return ExitStatus::Usage;
    }
    CPosixFiles system;
    CExclusiveFiles files(system);
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
    CLooseDocument loose(files);
    loose.link.newDatafile();
    if (const SaveReport report = loose.link.saveAs(absolute); report.failed()) {
        out.diagnose(report.error->sentence);
        return ExitStatus::FileFailed;
    }
    return ExitStatus::Done;
}

} // namespace mirovane
