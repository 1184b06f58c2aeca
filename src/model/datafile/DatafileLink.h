#pragma once

#include "model/Document.h"
#include "model/SaveReport.h"
#include "model/datafile/DatafileOrders.h"
#include "platform/BackgroundCall.h"
#include "platform/SharePatience.h"
#include "platform/files/Files.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace mirovane {

/// Where the datafile's file system is asked. It answers within a bounded time, which may be seconds.
struct DatafileThread {
    Workers* workers = nullptr; ///< one at a time; null: the main thread itself
    SharePatience* patience = nullptr;
};

/// What was asked in the background has been answered.
struct DatafileLooked {
    Result<FileIdentity, FileError> status;
};
struct DatafileReadAgain {
    std::optional<Datafile::Error> error;
};
using DatafileNews = std::variant<DatafileLooked, DatafileReadAgain, SaveReport>;

/// The document's tie to the datafile that it lives in: where the file is, what it was like when it was last
/// read or written, and the four ways to get at it: lock, read, merge, put. What touches the disk runs where
/// `thread` says, on values; what touches the records runs here. Main thread. The document, the files, the
/// log and the thread outlive it.
class CDatafileLink {
public:
    CDatafileLink(CMirovaneDoc& document, Files& files, CMessageLog& log, const DatafileThread& thread = {})
        : document_(document), files_(files), log_(log), thread_(thread) {}

    /// Fills the document as a new datafile without a name.
    void newDatafile();

    /// Replaces the document by the file's records, completed where the file is old or lost some. On failure
    /// the document stays what it was and the error says why.
    std::optional<Datafile::Error> open(const std::string& path);

    /// Why a datafile could not be opened; nothing when it could. For before the one that is open is given up
    /// for it.
    std::optional<Datafile::Error> whyNotReadable(const std::string& path);

    /// The records of the file again. What the user changed and could not save yet is put on top of them;
    /// what background work changed is dropped. On failure the records stay, and nothing is saved until the
    /// file could be read whole.
    std::optional<Datafile::Error> reload(Attempt attempt = Attempt::First);

    /// The one operation that writes the datafile. Logs "Saved ... changes to data file", or why not. With no
    /// path, and from within a notice that the records were replaced, it writes nothing.
    ///
    /// Where another station has saved since this one last read or wrote the file, it is read again under the
    /// same lock and this station's changes are put on top, which the log tells ("Merged changes from data
    /// file" and a line for every value that was lost).
    ///
    /// Any failure leaves the file as it was, and the marks of unsaved changes stay. Kind Changed: another
    /// station saved something that cannot be read. Kind NotFound also when the datafile is gone from where
    /// it was: on a share that is not mounted a new one would hide it.
    SaveReport save(SaveNote note = SaveNote::None, Attempt attempt = Attempt::First);

    /// The same under a new path, which becomes the datafile's own only when the save succeeded.
    SaveReport saveAs(const std::string& path);

    // ---- in the background: one question at a time, and collect() gives its answer

    /// What the file is like now.
    void startLook();

    /// As reload(). The records stay what they are until the answer is collected.
    void startReload(Attempt attempt = Attempt::First);

    /// As save(), of the records as they are now. A report at once where there is nothing to write.
    std::optional<SaveReport> startSave(SaveNote note = SaveNote::None, Attempt attempt = Attempt::First);

    /// One was asked, and its answer is not collected yet.
    bool underWay() const;

    /// True when the answer is there.
    bool wait(std::chrono::milliseconds patience) const;

    /// The answer. Nothing where a save met another station's: it goes on with both put together.
    /// `mayReplace` false: the records must stay; then such a save is Deferred, and its file counts as not
    /// read.
    std::optional<DatafileNews> collect(bool mayReplace = true);

    /// The records that were read must stay uncollected where they may not replace those that are here.
    bool hasRead() const { return calls_.read.underWay(); }

    /// Nobody waits for the answer any more. What was asked for may be done all the same; it then counts as
    /// another station's.
    DatafileNews giveUp();

    /// What is edited of the criteria of this type is not saved until another one, or none, is named: half a
    /// rule must not run on other stations either. It stays among what is unsaved.
    void holdCriteria(std::optional<std::int32_t> type) { heldType_ = type; }
    std::optional<std::int32_t> heldCriteria() const { return heldType_; }

    /// The user changed something else that is in no datafile yet.
    bool hasToSave() const;

    const std::string& path() const { return path_; }
    std::int32_t fileVersion() const { return fileVersion_; }

    /// As this station last read or wrote it; nothing before the first time.
    const std::optional<FileIdentity>& knownIdentity() const { return knownIdentity_; }

    /// This user may, as found when it was last read or written.
    bool writable() const { return writable_; }

    /// The file holds something that this station has tried and failed to read.
    bool mustReload() const { return mustReload_; }

    /// How many bytes follow the last record of the file. They open with it, and the log says so; the first
    /// save, which leaves them out, keeps the file as it was beside it.
    std::size_t strayBytes() const { return strayBytes_; }

    /// Whoever changes the file has made that copy.
    void strayBytesKept() { strayBytes_ = 0; }

    /// The records are being replaced by what the same datafile holds now.
    bool reloading() const { return replacing_; }

    /// An older datafile was opened and no save has written it in the current layout yet.
    bool upgradePending() const { return upgradedFrom_.has_value(); }

private:
    struct Save {
        std::string path;
        bool over = false; ///< also where the datafile is no longer there
        SaveNote note = SaveNote::None;
        Attempt attempt = Attempt::First;
        bool readAgain = false;
    };
    struct Calls {
        CBackgroundCall<Result<FileIdentity, FileError>> look;
        CBackgroundCall<DatafileOrders::ReadAnswer> read;
        CBackgroundCall<DatafileOrders::WriteAnswer> write;
    };

    void noteStrayBytes(std::size_t count);
    DatafileOrders::ReadAnswer read(const std::string& path);
    std::optional<DatafileNews> answered();
    std::optional<Datafile::Error> takeRead(DatafileOrders::ReadAnswer answer, bool forSave);
    void mergeInto(Datafile::RecordList theirs);
    std::optional<FileError> bringVersionToFront(const std::string& path);
    bool isHeld(const CHardware& record) const;
    Result<std::string, FileError> encoded(const std::string& path);
    std::optional<SaveReport> start(Save save, std::shared_ptr<LockedFile> locked = nullptr);
    std::optional<SaveReport> takeWritten(DatafileOrders::WriteAnswer answer, bool mayReplace);
    std::optional<SaveReport> takeChanged(DatafileOrders::Changed changed, bool mayReplace);
    void takeSaved(const DatafileOrders::Written& written);
    void letGo(std::shared_ptr<LockedFile> locked);
    SaveReport finish(std::optional<SaveReport> report);
    SaveReport failed(FileError error);
    std::string noteText(SaveNote note) const;
    SaveReport reported(SaveReport report, const Save& save);

    CMirovaneDoc& document_;
    Files& files_;
    CMessageLog& log_;
    DatafileThread thread_;
    std::string path_;
    std::int32_t fileVersion_ = Datafile::currentVersion;
    std::optional<std::int32_t> upgradedFrom_;
    std::optional<FileIdentity> knownIdentity_;
    std::size_t strayBytes_ = 0;
    bool writable_ = true;
    bool mustReload_ = false;   ///< a reload failed: what is in memory must not go over the file
    bool replacing_ = false;    ///< the document tells its observers of other records
    std::string reportedError_; ///< of the save that failed last
    std::optional<std::int32_t> heldType_;
    std::optional<Save> saving_; ///< under way
    Calls calls_;
};

} // namespace mirovane
