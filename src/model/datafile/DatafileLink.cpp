#include "model/datafile/DatafileLink.h"

#include "model/CriteriaEdit.h"
#include "model/datafile/Merge.h"
#include "model/datafile/NewRecords.h"
#include "model/records/Criteria.h"
#include "platform/files/FilePaths.h"
#include "platform/files/KeptCopy.h"

#include <cerrno>
#include <new>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

Datafile::Error cannotRead(const FileError& error) {
    return {Datafile::Error::Kind::CannotRead, 0, 0, error.sentence};
}

FileError unreadable(const std::string& path, const Datafile::Error& error) {
    return {FileError::Kind::Changed, 0,
            "cannot write " + path +
                ": the datafile was changed and could not be read again: " + error.sentence};
}

FileError vanished(const std::string& path) {
    return {FileError::Kind::NotFound, 0,
            "cannot write " + path +
                ": the datafile is no longer there. Where its share is not connected, a new one would be in "
                "the wrong place"};
}

std::chrono::milliseconds patienceOf(Attempt attempt) {
    return attempt == Attempt::First ? lockPatience : std::chrono::milliseconds(0);
}

SaveReport failure(FileError error, bool readAgain = false) {
    return {SaveReport::Outcome::Failed, std::move(error), readAgain};
}

/// Goes off also where memory runs out in the middle: while it is on nothing is saved.
class CReplacingMark {
public:
    explicit CReplacingMark(bool& mark) : mark_(mark) { mark_ = true; }
    ~CReplacingMark() { mark_ = false; }
    CReplacingMark(const CReplacingMark&) = delete;
    CReplacingMark& operator=(const CReplacingMark&) = delete;

private:
    bool& mark_;
};

Result<Datafile::Content, Datafile::Error> contentOf(LockedFile& file) {
    const auto bytes = file.read();
    if (!bytes)
        return cannotRead(bytes.error());
    return Datafile::decode(bytes.value());
}

} // namespace

// ---- reading

void CDatafileLink::newDatafile() {
    path_.clear();
    knownIdentity_.reset();
    fileVersion_ = Datafile::currentVersion;
    upgradedFrom_.reset();
    mustReload_ = false;
    strayBytes_ = 0;
    document_.replaceAll(newRecords(document_.station(), document_.now()), false);
}

std::optional<Datafile::Error> CDatafileLink::open(const std::string& path) {
    const std::string target = absolutePath(path);
    auto locked = files_.lock(target, FileAccess::Read, lockPatience);
    if (!locked)
        return cannotRead(locked.error());
    auto content = contentOf(*locked.value());
    if (!content)
        return content.error();
    path_ = target;
    knownIdentity_ = locked.value()->identity();
    fileVersion_ = content.value().fileVersion;
    upgradedFrom_.reset();
    if (fileVersion_ != Datafile::currentVersion)
        upgradedFrom_ = fileVersion_;
    mustReload_ = false;
    reportedError_.clear();
    noteStrayBytes(content.value().strayBytes);
    completeRecords(content.value().records, fileVersion_, document_.now());
    document_.replaceAll(std::move(content.value().records), true);
    return std::nullopt;
}

std::optional<Datafile::Error> CDatafileLink::whyNotReadable(const std::string& path) {
    auto locked = files_.lock(path, FileAccess::Read, lockPatience);
    if (!locked)
        return cannotRead(locked.error());
    const auto content = contentOf(*locked.value());
    return content ? std::nullopt : std::optional(content.error());
}

std::optional<Datafile::Error> CDatafileLink::reload(Attempt attempt) {
    mustReload_ = true;
    auto locked = files_.lock(path_, FileAccess::Read, patienceOf(attempt));
    if (!locked)
        return cannotRead(locked.error());
    return readAgain(*locked.value(), false);
}

/// Puts what the journal holds on top of what is in the file now. What background work found is kept for the
/// save that brought us here; a reload that has nothing of the user's to keep drops it.
std::optional<Datafile::Error> CDatafileLink::readAgain(LockedFile& file, bool forSave) {
    mustReload_ = true;
    auto content = contentOf(file);
    if (!content)
        return content.error();
    mustReload_ = false;
    fileVersion_ = content.value().fileVersion;
    knownIdentity_ = file.identity();
    noteStrayBytes(content.value().strayBytes);
    const CReplacingMark mark(replacing_);
    const CEditJournal& journal = document_.journal();
    if (journal.nothingToKeep() && (!forSave || journal.changes().empty()))
        document_.replaceByReload(std::move(content.value().records), {}, {});
    else
        mergeInto(std::move(content.value().records));
    return std::nullopt;
}

void CDatafileLink::mergeInto(Datafile::RecordList theirs) {
    MergeResult result = mergeEdits(std::move(theirs), document_.records(), document_.journal());
    log_.LogMessage("Merged changes from data file", true);
    for (const std::string& line : result.lines)
        log_.LogLasting(line);
    std::vector<std::int32_t> judgedAnew;
    for (const auto& [record, change] : result.journal.changes())
        if (isCriteriaRecordType(record->Type))
            judgedAnew.push_back(criteriaTypeOf(record->Type));
    document_.replaceByReload(std::move(result.records), std::move(result.journal), result.renumbered);
    for (const std::int32_t type : judgedAnew)
        forgetTextFileStamps(document_, type, true);
}

// ---- writing

/// Every station looks for the version in the first record. A second VersionRecord is left where it is.
std::optional<FileError> CDatafileLink::bringVersionToFront(const std::string& path) {
    if (!document_.findSpecial(SpecialType::VersionRecord)) {
        CHardware version;
        version.Type = SpecialType::VersionRecord;
        version.Modified = document_.now();
        document_.append(std::move(version));
    }
    const CHardware* version = document_.findSpecial(SpecialType::VersionRecord);
    if (!version || document_.size() > Datafile::maxRecords)
        return FileError{FileError::Kind::TooLarge, 0,
                         "cannot write " + path + ": a datafile holds at most 65,534 records"};
    document_.editInBackground(*version, [](CHardware& held) { held.State = Datafile::currentVersion; });
    for (std::size_t place = 0; place < document_.size(); ++place) {
        if (&document_.at(place) == version) {
            document_.exchange(0, place);
            break;
        }
    }
    return std::nullopt;
}

Result<std::string, FileError> CDatafileLink::encoded(const std::string& path) {
    if (auto error = bringVersionToFront(path))
        return *error;
    try {
        return Datafile::encode(document_.records());
    } catch (const std::bad_alloc&) {
        return FileError{FileError::Kind::Other, ENOMEM, "cannot write " + path + ": Out of memory"};
    }
}

/// `over`: also where the datafile is no longer there.
SaveReport CDatafileLink::write(const std::string& path, bool over, std::chrono::milliseconds patience) {
    auto bytes = encoded(path); // before the lock, which others wait for
    if (!bytes)
        return failure(bytes.error());
    auto locked = files_.lock(path, FileAccess::Write, patience);
    if (!locked)
        return failure(locked.error());
    LockedFile& file = *locked.value();
    const bool own = path == path_;
    if (own && !file.exists() && knownIdentity_ && !over)
        return failure(vanished(path));
    const bool changed = mustReload_ || (knownIdentity_ && file.identity() != *knownIdentity_);
    bool again = false;
    if (own && file.exists() && changed) {
        if (const auto error = readAgain(file, true))
            return failure(unreadable(path, *error));
        again = true;
        bytes = encoded(path);
        if (!bytes)
            return failure(bytes.error(), again);
    }
    if (auto error = put(file, path, bytes.value()))
        return failure(std::move(*error), again);
    return {SaveReport::Outcome::Saved, std::nullopt, again};
}

void CDatafileLink::noteStrayBytes(std::size_t count) {
    strayBytes_ = count;
    if (count > 0)
        log_.LogMessage(
            "The datafile has " + std::to_string(count) +
                " byte(s) after its last record, which mean nothing. The first save leaves them out "
                "and keeps the file as it is.",
            true);
}

std::optional<FileError> CDatafileLink::keepStrayBytes(const std::string& path) {
    if (strayBytes_ == 0 || path != path_)
        return std::nullopt;
    CKeptCopy copy;
    if (auto error = copy.make(path, beforeRepair))
        return error;
    copy.keep();
    strayBytes_ = 0;
    log_.LogMessage("The datafile as it was is kept as " + copy.path(), true);
    return std::nullopt;
}

/// After an error the new file may be in place all the same. It then counts as another station's: a merge
/// with what is in it already changes nothing.
std::optional<FileError> CDatafileLink::put(LockedFile& file, const std::string& path,
                                            std::string_view bytes) {
    if (auto error = keepStrayBytes(path))
        return error;
    log_.settle(); // before a value is gone from the datafile, its line is on disk
    const auto replaced = file.replace(bytes);
    if (!replaced)
        return replaced.error();
    knownIdentity_ = replaced.value();
    path_ = path;
    mustReload_ = false;
    document_.allSaved();
    return std::nullopt;
}

std::string CDatafileLink::noteText(SaveNote note) const {
    if (upgradedFrom_)
        return "updated datafile version " + std::to_string(*upgradedFrom_) + " to " +
               std::to_string(Datafile::currentVersion) + " ";
    switch (note) {
    case SaveNote::LiveStat:
        return "Live Stat ";
    case SaveNote::DiscoverNow:
        return "Discover Now ";
    case SaveNote::None:
        break;
    }
    return {};
}

SaveReport CDatafileLink::reported(SaveReport report, const std::string& path, SaveNote note,
                                   Attempt attempt) {
    if (report.saved()) {
        const std::string text = noteText(note);
        log_.LogMessage("Saved " + text + "changes to data file", text.empty());
        upgradedFrom_.reset();
        reportedError_.clear();
        return report;
    }
    const std::string& sentence = report.error->sentence;
    if (attempt == Attempt::First || sentence != reportedError_) {
        log_.LogTrouble(sentence, note == SaveNote::None);
        log_.LogTrouble("Error accessing datafile " + path, note == SaveNote::None);
    }
    reportedError_ = sentence;
    return report;
}

SaveReport CDatafileLink::save(SaveNote note, Attempt attempt) {
    if (replacing_)
        return {};
    if (path_.empty()) {
        document_.markModified();
        return {};
    }
    return reported(write(path_, false, patienceOf(attempt)), path_, note, attempt);
}

SaveReport CDatafileLink::saveAs(const std::string& path) {
    const std::string target = absolutePath(path);
    if (isSameFile(target, path_) && existsOnDisk(target))
        return save();
    return reported(write(target, true, lockPatience), target, SaveNote::None, Attempt::First);
}

} // namespace mirovane
