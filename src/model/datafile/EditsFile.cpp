#include "model/datafile/EditsFile.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FilePaths.h"
#include "platform/files/SafeReplace.h"
#include "platform/files/StateFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <utility>

namespace mirovane {

namespace {

constexpr int mostSlots = 9; ///< programs of one user with edits for one datafile
constexpr std::size_t longestStem = 100;

/// A file that has grown to several times what it must hold is written anew, but not for a few kilobytes.
constexpr std::size_t roomToGrow = std::size_t{64} * 1024;
constexpr std::size_t mostGrowth = 4;

} // namespace

std::string CEditsFile::slot(int number) const {
    return folder_ + "/" + nameOf(datafile_).substr(0, longestStem) + "-" + fingerprintOf(datafile_) +
           (number == 1 ? "" : "." + std::to_string(number)) + ".edits";
}

void CEditsFile::setDatafile(const std::string& datafile) {
    letGo();
    datafile_ = datafile;
}

void CEditsFile::letGo() {
    file_.close();
    leftovers_.clear();
    size_ = sizeAtFirst_ = 0;
}

bool CEditsFile::grown() const {
    return size_ > roomToGrow && size_ > mostGrowth * sizeAtFirst_;
}

// ---- what an earlier program left

std::vector<KeptEdit> CEditsFile::takeLeftovers() {
    std::vector<KeptEdit> edits;
    if (!enabled() || !isOwnFolder(calls_, folder_))
        return edits;
    for (int number = 1; number <= mostSlots; ++number)
        if (!takeOne(slot(number), edits))
            log_.LogTrouble(fileError("cannot read", slot(number), errno).sentence, true);
    return edits;
}

/// False, and errno, where it cannot be read.
bool CEditsFile::takeOne(const std::string& path, std::vector<KeptEdit>& edits) {
    COpenFile file(calls_, calls_.openFile(path, O_RDWR, 0));
    if (!file)
        return errno == ENOENT;
    if (calls_.tryLock(file.fd(), true) != 0 && !locksUnsupported(errno))
        return true; // its program is alive
    const std::optional<std::string> bytes = readWhole(calls_, file.fd());
    if (!bytes)
        return false;
    auto content = KeptEditsFormat::read(*bytes);
    for (auto& [number, edit] : content.edits)
        edits.push_back(std::move(edit));
    if (!content.damaged || setAside(path))
        leftovers_.push_back({path, std::move(file)});
    return true;
}

/// True when it has a second name and the first may go.
bool CEditsFile::setAside(const std::string& path) {
    std::string aside = path + "-damaged";
    int number = 2;
    int made = calls_.link(path, aside);
    while (made != 0 && errno == EEXIST) {
        aside = path + "-damaged-" + std::to_string(number++);
        made = calls_.link(path, aside);
    }
    log_.LogTrouble("A file of unsaved edits is damaged. What can be read of it is used; it is kept as " +
                        (made == 0 ? aside : path),
                    true);
    return made == 0;
}

// ---- keeping

bool CEditsFile::write(const std::string& content) {
    if (!makeStateFolder(calls_, folder_))
        return false;
    if (!file_ && !leftovers_.empty()) {
        path_ = leftovers_.front().path;
        file_ = std::move(leftovers_.front().file);
        leftovers_.erase(leftovers_.begin());
    }
    if (!(file_ ? replace(content) : makeNew(content)) || !flushFolder(calls_, folder_))
        return false;
    size_ = sizeAtFirst_ = content.size();
    for (const Left& left : leftovers_)
        calls_.remove(left.path);
    leftovers_.clear();
    return true;
}

bool CEditsFile::replace(const std::string& content) {
    struct stat status = {};
    if (calls_.statusOf(file_.fd(), status) != 0)
        return false;
    CSafeReplace replacement(calls_, path_, file_.fd(), status, Leftover::Stale);
    auto made = replacement.run(content);
    if (made)
        file_ = std::move(*made);
    else
        errno = replacement.error().code;
    return made.has_value();
}

/// In the first slot that is free.
bool CEditsFile::makeNew(const std::string& content) {
    for (int number = 1; number <= mostSlots; ++number) {
        path_ = slot(number);
        CSafeReplace fresh(calls_, path_, Leftover::PerhapsInUse);
        if (auto made = fresh.run(content)) {
            file_ = std::move(*made);
            return true;
        }
        errno = fresh.error().code;
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool CEditsFile::append(std::string_view entries) {
    if (entries.empty())
        return true;
    if (!appendWhole(calls_, file_.fd(), static_cast<off_t>(size_), entries) || calls_.flush(file_.fd()) != 0)
        return false;
    size_ += entries.size();
    return true;
}

void CEditsFile::discard() {
    for (const Left& left : leftovers_)
        calls_.remove(left.path);
    if (file_)
        calls_.remove(path_);
    letGo();
}

} // namespace mirovane
