#include "model/LogFile.h"

#include "platform/files/FileErrors.h"
#include "platform/files/OpenFile.h"
#include "platform/files/StateFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace mirovane {

namespace {

/// Another program that moves the file aside does so in a moment.
constexpr int attempts = 50;
constexpr std::chrono::milliseconds betweenAttempts{2};

std::string numbered(const std::string& path, int number) {
    return number == 0 ? path : path + "." + std::to_string(number);
}

} // namespace

CLogFile::CLogFile(CMessageLog& log, CFileCalls& calls, std::string folder)
    : log_(log), calls_(calls), folder_(std::move(folder)) {
    log_.addListener(*this);
}

CLogFile::~CLogFile() {
    log_.removeListener(*this);
    linesSettle();
}

void CLogFile::lineLogged(const LogLine& line) {
    if (line.kind != LogKind::Lasting || folder_.empty())
        return;
    if (makeStateFolder(calls_, folder_) && write(line.shown() + "\n")) {
        unflushed_ = true;
        toldCode_ = 0;
    } else {
        tellFailure(errno);
    }
}

/// Whoever has the lock may write and move aside, if the file is still the one at the path.
bool CLogFile::write(const std::string& text) {
    const std::string path = pathIn(folder_);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const COpenFile file(calls_, calls_.openFile(path, O_RDWR | O_CREAT, 0600));
        struct stat opened = {};
        struct stat named = {};
        if (!file || calls_.statusOf(file.fd(), opened) != 0)
            return false;
        if (calls_.tryLock(file.fd(), true) != 0 && !locksUnsupported(errno)) {
            calls_.pause(betweenAttempts);
            continue;
        }
        if (calls_.statusAt(path, named) != 0 || !sameFile(opened, named) ||
            calls_.statusOf(file.fd(), opened) != 0)
            continue;
        if (opened.st_size + static_cast<std::int64_t>(text.size()) > fullSize && opened.st_size > 0) {
            if (!moveAside(file.fd()))
                return false;
            continue;
        }
        return appendWhole(calls_, file.fd(), opened.st_size, text);
    }
    errno = EAGAIN;
    return false;
}

bool CLogFile::moveAside(int fd) {
    const std::string path = pathIn(folder_);
    if (calls_.flush(fd) != 0)
        return false;
    for (int number = keptFiles - 1; number > 0; --number)
        if (calls_.rename(numbered(path, number - 1), numbered(path, number)) != 0 && errno != ENOENT)
            return false;
    return true;
}

void CLogFile::linesSettle() {
    if (!std::exchange(unflushed_, false))
        return;
    const COpenFile file(calls_, calls_.openFile(pathIn(folder_), O_RDWR, 0));
    if (!file || calls_.flush(file.fd()) != 0 || !flushFolder(calls_, folder_))
        tellFailure(errno);
}

/// Once for each reason, in the log that is lost with the program.
void CLogFile::tellFailure(int code) {
    if (std::exchange(toldCode_, code) != code)
        log_.LogTrouble(fileError("cannot write", pathIn(folder_), code).sentence, true);
}

} // namespace mirovane
