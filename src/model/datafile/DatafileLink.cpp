#include "model/datafile/DatafileLink.h"

#include "model/CriteriaEdit.h"
#include "model/datafile/Merge.h"
#include "model/datafile/NewRecords.h"
#include "model/records/Criteria.h"
#include "platform/files/FilePaths.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

FileError unreadable(const std::string& path, const Datafile::Error& error) {
    return {FileError::Kind::Changed, 0,
            "cannot write " + path +
                ": the datafile was changed and could not be read again: " + error.sentence};
}

std::chrono::milliseconds patienceOf(Attempt attempt) {
    return attempt == Attempt::First ? lockPatience : std::chrono::milliseconds(0);
}

/// How long the main thread sleeps before it looks whether anybody still wants to wait.
constexpr std::chrono::milliseconds waitStep{20};

FileError givenUp(const std::string& path) {
    return {FileError::Kind::NotAnswering, ETIMEDOUT, "cannot write " + path + ": its share does not answer"};
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

} // namespace

// ---- reading

void CDatafileLink::newDatafile() {
    calls_ = {};
    saving_.reset();
    path_.clear();
    knownIdentity_.reset();
    fileVersion_ = Datafile::currentVersion;
    upgradedFrom_.reset();
    mustReload_ = false;
    strayBytes_ = 0;
    document_.replaceAll(newRecords(document_.station(), document_.now()), false);
}

/// Waits for the answer, whoever's turn on the disk it is.
DatafileOrders::ReadAnswer CDatafileLink::read(const std::string& path) {
    const DatafileOrders::Read order{path, lockPatience};
    CBackgroundCall<DatafileOrders::ReadAnswer> call;
    call.start(thread_.workers, [files = &files_, order] { return carryOut(*files, order); });
    while (!call.wait(waitStep))
        if (thread_.patience && !thread_.patience->keepWaiting(path))
            return Datafile::Error{Datafile::Error::Kind::CannotRead, 0, 0,
                                   "cannot read " + path + ": its share does not answer"};
    return call.take();
}

std::optional<Datafile::Error> CDatafileLink::open(const std::string& path) {
    const std::string target = absolutePath(path);
    auto answer = read(target);
    if (!answer)
        return answer.error();
    Datafile::Content& content = answer.value().content;
    calls_ = {};
    saving_.reset();
    path_ = target;
    knownIdentity_ = answer.value().identity;
    writable_ = answer.value().writable;
    fileVersion_ = content.fileVersion;
    upgradedFrom_.reset();
    if (fileVersion_ != Datafile::currentVersion)
        upgradedFrom_ = fileVersion_;
    mustReload_ = false;
    reportedError_.clear();
    noteStrayBytes(content.strayBytes);
    completeRecords(content.records, fileVersion_, document_.now());
    document_.replaceAll(std::move(content.records), true);
    return std::nullopt;
}

std::optional<Datafile::Error> CDatafileLink::whyNotReadable(const std::string& path) {
    const auto answer = read(path);
    return answer ? std::nullopt : std::optional(answer.error());
}

std::optional<Datafile::Error> CDatafileLink::reload(Attempt attempt) {
    startReload(attempt);
    const auto news = answered();
    return news ? std::get<DatafileReadAgain>(*news).error : std::nullopt;
}

/// Puts what the journal holds on top of what is in the file now. What background work found is kept for the
/// save that brought us here; a reload that has nothing of the user's to keep drops it.
std::optional<Datafile::Error> CDatafileLink::takeRead(DatafileOrders::ReadAnswer answer, bool forSave) {
    mustReload_ = true;
    if (!answer)
        return answer.error();
    Datafile::Content& content = answer.value().content;
    mustReload_ = false;
    fileVersion_ = content.fileVersion;
    knownIdentity_ = answer.value().identity;
    writable_ = answer.value().writable;
    noteStrayBytes(content.strayBytes);
    const CReplacingMark mark(replacing_);
    const CEditJournal& journal = document_.journal();
    if (journal.nothingToKeep() && (!forSave || journal.changes().empty()))
        document_.replaceByReload(std::move(content.records), {}, {});
    else
        mergeInto(std::move(content.records));
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

bool CDatafileLink::isHeld(const CHardware& record) const {
    return heldType_ && isCriteriaRecordType(record.Type) && criteriaTypeOf(record.Type) == *heldType_;
}

bool CDatafileLink::hasToSave() const {
    const CEditJournal& journal = document_.journal();
    if (!document_.unsavedEdits() || !heldType_)
        return document_.unsavedEdits();
    return journal.anyAdded() || !journal.removals().empty() ||
           std::ranges::any_of(journal.changes(), [this](const auto& entry) {
               return entry.second.byUser.any() && !isHeld(*entry.first);
           });
}

Result<std::string, FileError> CDatafileLink::encoded(const std::string& path) {
    if (auto error = bringVersionToFront(path))
        return *error;
    const auto asInDatafile = [this](const CHardware& record) -> const CHardware& {
        const CEditJournal::Change* change = isHeld(record) ? document_.journal().changeOf(record) : nullptr;
        return change ? change->base : record;
    };
    try {
        return heldType_ ? Datafile::encode(document_.records(), asInDatafile)
                         : Datafile::encode(document_.records());
    } catch (const std::bad_alloc&) {
        return FileError{FileError::Kind::Other, ENOMEM, "cannot write " + path + ": Out of memory"};
    }
}

/// Encodes before the lock, which others wait for. `locked` is given where the file was just read.
std::optional<SaveReport> CDatafileLink::start(Save save, std::shared_ptr<LockedFile> locked) {
    saving_ = std::move(save);
    const bool own = saving_->path == path_;
    auto bytes = encoded(saving_->path);
    if (!bytes) {
        letGo(std::move(locked));
        return failed(bytes.error());
    }
    DatafileOrders::Write order;
    order.path = saving_->path;
    order.bytes = std::move(bytes.value());
    order.patience = patienceOf(saving_->attempt);
    order.mustBeThere = own && knownIdentity_ && !saving_->over;
    if (own)
        order.known = knownIdentity_;
    order.readFirst = own && mustReload_;
    order.keepsOld = own && strayBytes_ > 0;
    order.locked = std::move(locked);
    log_.settle(); // before a value is gone from the datafile, its line is on disk
    if (heldType_)
        document_.saveBegins([this](const CHardware& record) { return isHeld(record); });
    else
        document_.saveBegins();
    calls_.write.start(thread_.workers, [files = &files_, order = std::move(order)]() mutable {
        return carryOut(*files, std::move(order));
    });
    return std::nullopt;
}

std::optional<SaveReport> CDatafileLink::takeWritten(DatafileOrders::WriteAnswer answer, bool mayReplace) {
    if (auto* changed = std::get_if<DatafileOrders::Changed>(&answer))
        return takeChanged(std::move(*changed), mayReplace);
    if (const auto* error = std::get_if<FileError>(&answer))
        return failed(*error);
    takeSaved(std::get<DatafileOrders::Written>(answer));
    const Save save = *std::exchange(saving_, std::nullopt);
    return reported({SaveReport::Outcome::Saved, std::nullopt, save.readAgain}, save);
}

std::optional<SaveReport> CDatafileLink::takeChanged(DatafileOrders::Changed changed, bool mayReplace) {
    if (!mayReplace) {
        letGo(std::move(changed.locked));
        document_.saveFailed();
        mustReload_ = true;
        saving_.reset();
        return SaveReport{};
    }
    if (const auto error = takeRead(std::move(changed.read), true)) {
        letGo(std::move(changed.locked));
        return failed(unreadable(saving_->path, *error));
    }
    Save save = *saving_;
    save.readAgain = true;
    return start(std::move(save), std::move(changed.locked));
}

void CDatafileLink::takeSaved(const DatafileOrders::Written& written) {
    knownIdentity_ = written.identity;
    path_ = saving_->path;
    writable_ = true;
    mustReload_ = false;
    document_.allSaved();
    if (written.copy.empty())
        return;
    strayBytes_ = 0;
    log_.LogMessage("The datafile as it was is kept as " + written.copy, true);
}

/// Closing a file may hang, too.
void CDatafileLink::letGo(std::shared_ptr<LockedFile> locked) {
    if (locked && thread_.workers)
        thread_.workers->start([file = std::move(locked)]() mutable { file.reset(); });
}

/// After an error the new file may be in place all the same. It then counts as another station's: a merge
/// with what is in it already changes nothing.
SaveReport CDatafileLink::failed(FileError error) {
    document_.saveFailed();
    const Save save = *std::exchange(saving_, std::nullopt);
    return reported({SaveReport::Outcome::Failed, std::move(error), save.readAgain}, save);
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

SaveReport CDatafileLink::reported(SaveReport report, const Save& save) {
    if (report.saved()) {
        const std::string text = noteText(save.note);
        log_.LogMessage("Saved " + text + "changes to data file", text.empty());
        upgradedFrom_.reset();
        reportedError_.clear();
        return report;
    }
    const std::string& sentence = report.error->sentence;
    if (save.attempt == Attempt::First || sentence != reportedError_) {
        log_.LogTrouble(sentence, save.note == SaveNote::None);
        log_.LogTrouble("Error accessing datafile " + save.path, save.note == SaveNote::None);
    }
    reportedError_ = sentence;
    return report;
}

SaveReport CDatafileLink::save(SaveNote note, Attempt attempt) {
    return finish(startSave(note, attempt));
}

SaveReport CDatafileLink::saveAs(const std::string& path) {
    const std::string target = absolutePath(path);
    if (isSameFile(target, path_) && existsOnDisk(target))
        return save();
    return finish(start({target, true, SaveNote::None, Attempt::First}));
}

SaveReport CDatafileLink::finish(std::optional<SaveReport> report) {
    if (report)
        return *report;
    const auto news = answered();
    const auto* saved = news ? std::get_if<SaveReport>(&*news) : nullptr;
    return saved ? *saved : SaveReport{};
}

// ---- in the background

void CDatafileLink::startLook() {
    calls_.look.start(
        thread_.workers, [files = &files_, path = path_] { return files->status(path); });
}

void CDatafileLink::startReload(Attempt attempt) {
    const DatafileOrders::Read order{path_, patienceOf(attempt)};
    calls_.read.start(thread_.workers, [files = &files_, order] { return carryOut(*files, order); });
}

std::optional<SaveReport> CDatafileLink::startSave(SaveNote note, Attempt attempt) {
    if (replacing_)
        return SaveReport{};
    if (path_.empty()) {
        document_.markModified();
        return SaveReport{};
    }
    return start({path_, false, note, attempt});
}

bool CDatafileLink::underWay() const {
    return calls_.look.underWay() || calls_.read.underWay() || calls_.write.underWay();
}

bool CDatafileLink::wait(std::chrono::milliseconds patience) const {
    if (calls_.look.underWay())
        return calls_.look.wait(patience);
    if (calls_.read.underWay())
        return calls_.read.wait(patience);
    return calls_.write.underWay() && calls_.write.wait(patience);
}

std::optional<DatafileNews> CDatafileLink::collect(bool mayReplace) {
    if (calls_.look.underWay())
        return DatafileLooked{calls_.look.take()};
    if (calls_.read.underWay())
        return DatafileReadAgain{takeRead(calls_.read.take(), false)};
    if (const auto report = takeWritten(calls_.write.take(), mayReplace))
        return *report;
    return std::nullopt;
}

DatafileNews CDatafileLink::giveUp() {
    const bool looked = calls_.look.underWay();
    const bool wrote = calls_.write.underWay();
    calls_ = {};
    if (wrote)
        return failed(givenUp(path_));
    if (looked)
        return DatafileLooked{givenUp(path_)};
    return DatafileReadAgain{Datafile::Error{Datafile::Error::Kind::CannotRead, 0, 0,
                                             "cannot read " + path_ + ": its share does not answer"}};
}

/// Waits. Nothing where somebody else has collected the answer meanwhile.
std::optional<DatafileNews> CDatafileLink::answered() {
    while (underWay()) {
        if (wait(waitStep)) {
            if (auto news = collect())
                return news;
        } else if (thread_.patience && !thread_.patience->keepWaiting(path_)) {
            return underWay() ? std::optional(giveUp()) : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace mirovane
