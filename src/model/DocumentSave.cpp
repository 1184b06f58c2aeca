#include "model/Criteria.h"
#include "model/Document.h"
#include "platform/FilePaths.h"

#include <cerrno>
#include <new>
#include <unordered_map>
#include <utility>

namespace mirovane {

namespace {

/// What the user sees of a device beyond its stored fields.
struct SeenFlags {
    std::int32_t recID = 0;
    bool selected = false;
    bool marked = false;
};

std::vector<SeenFlags> seenFlags(const Datafile::RecordList& records) {
    std::vector<SeenFlags> flags;
    for (const auto& record : records) {
        if (record->isDevice() && (record->Selected != 0 || record->LSNowMark != 0))
            flags.push_back({record->RecID, record->Selected != 0, record->LSNowMark != 0});
    }
    return flags;
}

FileError unreadable(const std::string& path, const Datafile::Error& error) {
    return {FileError::Kind::Changed, 0,
            "cannot write " + path +
                ": the datafile was changed and could not be read again: " + error.sentence};
}

std::chrono::milliseconds patienceOf(CMirovaneDoc::Attempt attempt) {
    return attempt == CMirovaneDoc::Attempt::First ? lockPatience : std::chrono::milliseconds(0);
}

FileError vanished(const std::string& path) {
    return {FileError::Kind::NotFound, 0,
            "cannot write " + path +
                ": the datafile is no longer there. Where its share is not connected, a new one would be in "
                "the wrong place"};
}

} // namespace

// ---- reading again

std::optional<Datafile::Error> CMirovaneDoc::reload(Attempt attempt) {
    mustReload_ = true;
    auto locked = files_.lock(path_, FileAccess::Read, patienceOf(attempt));
    if (!locked)
        return Datafile::Error{Datafile::Error::Kind::CannotRead, 0, 0, locked.error().sentence};
    if (journal_.nothingToKeep())
        journal_.clear();
    auto error = readAgain(*locked.value());
    modified_ = unsavedEdits();
    return error;
}

/// Puts what the journal holds on top of what is in the file now.
std::optional<Datafile::Error> CMirovaneDoc::readAgain(LockedFile& file) {
    mustReload_ = true;
    const auto bytes = file.read();
    if (!bytes)
        return Datafile::Error{Datafile::Error::Kind::CannotRead, 0, 0, bytes.error().sentence};
    auto content = Datafile::decode(bytes.value());
    if (!content)
        return content.error();
    mustReload_ = false;
    fileVersion_ = content.value().fileVersion;
    knownIdentity_ = file.identity();
    display_.readAtOpen(settings_);
    if (journal_.nothingToKeep() && journal_.changes().empty())
        replaceRecords(std::move(content.value().records), {});
    else
        mergeInto(std::move(content.value().records));
    if (const CHardware* version = findSpecial(SpecialType::VersionRecord))
        creationTime_ = version->Modified;
    return std::nullopt;
}

void CMirovaneDoc::mergeInto(Datafile::RecordList theirs) {
    MergeResult result = mergeEdits(std::move(theirs), records_, journal_);
    journal_ = std::move(result.journal);
    log_.LogMessage("Merged changes from data file", true);
    for (const std::string& line : result.lines)
        log_.LogMessage(line);
    std::vector<std::int32_t> judgedAnew;
    for (const auto& [record, change] : journal_.changes()) {
        if (isCriteriaRecordType(record->Type))
            judgedAnew.push_back((-record->Type - 80) / 20);
    }
    replaceRecords(std::move(result.records), result.renumbered);
    for (const std::int32_t type : judgedAnew)
        forgetTextFileStamps(type, true);
}

/// The same datafile as before, only its records are other ones.
void CMirovaneDoc::replaceRecords(Datafile::RecordList records, const std::vector<Renumbering>& renumbered) {
    const std::vector<SeenFlags> seen = seenFlags(records_);
    const Datafile::RecordList before = std::exchange(records_, std::move(records));
    index_.rebuild(records_);
    std::unordered_map<std::int32_t, std::int32_t> newIDs;
    for (const Renumbering& change : renumbered)
        newIDs[change.from] = change.to;
    for (const SeenFlags& flags : seen) {
        const auto moved = newIDs.find(flags.recID);
        if (const auto place = index_.device(moved == newIDs.end() ? flags.recID : moved->second)) {
            records_[*place]->Selected = records_[*place]->ShowAll = flags.selected ? 1 : 0;
            records_[*place]->LSNowMark = flags.marked ? 1 : 0;
        }
    }
    const bool wasLoading = std::exchange(loading_, true);
    for (const Renumbering& change : renumbered) {
        for (DocumentObserver* observer : observers_)
            observer->recordRenumbered(change.from, change.to);
    }
    tellReplaced();
    loading_ = wasLoading;
}

// ---- writing

/// Every station looks for the version in the first record. A second VersionRecord is left where it is.
std::optional<FileError> CMirovaneDoc::bringVersionToFront(const std::string& path) {
    if (!holdsSpecial(SpecialType::VersionRecord))
        append(makeSpecial(SpecialType::VersionRecord, Datafile::currentVersion));
    const auto place = index_.special(SpecialType::VersionRecord);
    if (!place || records_.size() > Datafile::maxRecords)
        return FileError{FileError::Kind::TooLarge, 0,
                         "cannot write " + path + ": a datafile holds at most 65,534 records"};
    editInBackground(*records_[*place], [](CHardware& held) { held.State = Datafile::currentVersion; });
    exchange(0, *place);
    return std::nullopt;
}

Result<std::string, FileError> CMirovaneDoc::encoded(const std::string& path) {
    if (auto error = bringVersionToFront(path))
        return *error;
    try {
        return Datafile::encode(records_);
    } catch (const std::bad_alloc&) {
        return FileError{FileError::Kind::Other, ENOMEM, "cannot write " + path + ": Out of memory"};
    }
}

/// `over`: also where the datafile is no longer there.
std::optional<FileError> CMirovaneDoc::write(const std::string& path, bool over,
                                             std::chrono::milliseconds patience) {
    auto bytes = encoded(path); // before the lock, which others wait for
    if (!bytes)
        return bytes.error();
    auto locked = files_.lock(path, FileAccess::Write, patience);
    if (!locked)
        return locked.error();
    LockedFile& file = *locked.value();
    if (path != path_)
        return put(file, path, bytes.value());
    if (!file.exists() && knownIdentity_ && !over)
        return vanished(path);
    const bool changed = mustReload_ || (knownIdentity_ && file.identity() != *knownIdentity_);
    if (file.exists() && changed) {
        if (const auto error = readAgain(file))
            return unreadable(path, *error);
        readAgainBySave_ = true;
        bytes = encoded(path);
        if (!bytes)
            return bytes.error();
    }
    return put(file, path, bytes.value());
}

/// After an error the new file may be in place all the same. It then counts as another station's: a merge
/// with what is in it already changes nothing.
std::optional<FileError> CMirovaneDoc::put(LockedFile& file, const std::string& path,
                                           std::string_view bytes) {
    const auto replaced = file.replace(bytes);
    if (!replaced)
        return replaced.error();
    knownIdentity_ = replaced.value();
    journal_.clear();
    path_ = path;
    modified_ = upgradePending_ = mustReload_ = false;
    return std::nullopt;
}

std::optional<FileError> CMirovaneDoc::reportSave(const std::string& path, std::optional<FileError> error,
                                                  Attempt attempt) {
    const bool toStatusBar = saveNote_.empty();
    if (!error) {
        log_.LogMessage("Saved " + saveNote_ + "changes to data file", toStatusBar);
    } else if (attempt == Attempt::First || error->sentence != reportedError_) {
        log_.LogMessage(error->sentence, toStatusBar);
        log_.LogMessage("Error accessing datafile " + path, toStatusBar);
    }
    reportedError_ = error ? error->sentence : std::string();
    if (!error || error->kind != FileError::Kind::Changed)
        saveNote_.clear();
    return error;
}

std::optional<FileError> CMirovaneDoc::save(Attempt attempt) {
    readAgainBySave_ = false;
    if (loading_)
        return std::nullopt;
    if (path_.empty()) {
        modified_ = true;
        return std::nullopt;
    }
    return reportSave(path_, write(path_, false, patienceOf(attempt)), attempt);
}

std::optional<FileError> CMirovaneDoc::saveAs(const std::string& path) {
    const std::string target = absolutePath(path);
    if (isSameFile(target, path_) && existsOnDisk(target))
        return save();
    const bool moved = target != path_;
    auto error = reportSave(target, write(target, true, lockPatience));
    if (!error && moved)
        exportAuto_ = readExportAuto(settings_, path_);
    return error;
}

} // namespace mirovane
