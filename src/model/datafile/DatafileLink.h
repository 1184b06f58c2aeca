#pragma once

#include "model/Document.h"
#include "model/SaveReport.h"
#include "platform/files/Files.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// The copy of a datafile that was mended by a save.
constexpr const char* beforeRepair = ".before-repair";

/// The document's tie to the datafile that it lives in: where the file is, what it was like when it was last
/// read or written, and the four ways to get at it: lock, read, merge, put. Main thread. The document, the
/// files and the log outlive it.
class CDatafileLink {
public:
    CDatafileLink(CMirovaneDoc& document, Files& files, CMessageLog& log)
        : document_(document), files_(files), log_(log) {}

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

    const std::string& path() const { return path_; }
    std::int32_t fileVersion() const { return fileVersion_; }

    /// As this station last read or wrote it; nothing before the first time.
    const std::optional<FileIdentity>& knownIdentity() const { return knownIdentity_; }

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
    void noteStrayBytes(std::size_t count);
    std::optional<FileError> keepStrayBytes(const std::string& path);
    std::optional<Datafile::Error> readAgain(LockedFile& file, bool forSave);
    void mergeInto(Datafile::RecordList theirs);
    std::optional<FileError> bringVersionToFront(const std::string& path);
    Result<std::string, FileError> encoded(const std::string& path);
    SaveReport write(const std::string& path, bool over, std::chrono::milliseconds patience);
    std::optional<FileError> put(LockedFile& file, const std::string& path, std::string_view bytes);
    std::string noteText(SaveNote note) const;
    SaveReport reported(SaveReport report, const std::string& path, SaveNote note, Attempt attempt);

    CMirovaneDoc& document_;
    Files& files_;
    CMessageLog& log_;
    std::string path_;
    std::int32_t fileVersion_ = Datafile::currentVersion;
    std::optional<std::int32_t> upgradedFrom_;
    std::optional<FileIdentity> knownIdentity_;
    std::size_t strayBytes_ = 0;
    bool mustReload_ = false;   ///< a reload failed: what is in memory must not go over the file
    bool replacing_ = false;    ///< the document tells its observers of other records
    std::string reportedError_; ///< of the save that failed last
};

} // namespace mirovane
