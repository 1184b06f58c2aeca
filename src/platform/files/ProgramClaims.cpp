#include "platform/files/ProgramClaims.h"

#include "platform/Host.h"
#include "platform/files/FilePaths.h"
#include "platform/files/StateFolder.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

/// Never 0, which is nobody, and small enough for a place in a file.
std::uint64_t randomNumber() {
    std::random_device random;
    const std::uint64_t high = random();
    return ((high << 32U | random()) >> 2U) + 1;
}

} // namespace

CProgramClaims::CProgramClaims(CFileCalls& calls, std::string folder)
    : calls_(calls), folder_(std::move(folder)), number_(randomNumber()) {}

void CProgramClaims::setDatafile(const std::string& path) {
    std::vector<std::string> held;
    for (const auto& [what, claim] : claims_)
        held.push_back(what);
    for (const std::string& what : held)
        letGo(what);
    datafile_ = path;
    for (const std::string& what : held)
        take(what);
}

std::string CProgramClaims::pathOf(const std::string& what) const {
    return folder_ + "/" + fingerprintOf(datafile_) + "-" + what + ".owner";
}

/// Nothing where the file is new.
std::optional<std::uint64_t> CProgramClaims::ownerIn(int fd) const {
    std::array<char, sizeof(std::uint64_t)> bytes{};
    if (calls_.readAt(fd, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        return std::nullopt;
    std::uint64_t number = 0;
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
}

bool CProgramClaims::elsewhere(const std::string& what) const {
    if (datafile_.empty())
        return false;
    const COpenFile file(calls_, calls_.openFile(pathOf(what), O_RDWR, 0));
    const auto owner = file ? ownerIn(file.fd()) : std::nullopt;
    return owner && *owner != 0 && *owner != number_ && calls_.isByteLocked(file.fd(), *owner);
}

bool CProgramClaims::take(const std::string& what) {
    if (datafile_.empty() || (claims_.contains(what) && !elsewhere(what)))
        return true;
    if (!makeStateFolder(calls_, folder_))
        return false;
    COpenFile file(calls_, calls_.openFile(pathOf(what), O_RDWR | O_CREAT, 0600));
    if (!file)
        return false;
    const std::uint64_t before = ownerIn(file.fd()).value_or(0);
    claims_.erase(what); // its lock is on the same byte
    std::array<char, sizeof number_> bytes{};
    std::memcpy(bytes.data(), &number_, bytes.size());
    if (calls_.tryLockByte(file.fd(), number_) != 0 ||
        !writeWhole(calls_, file.fd(), std::string_view(bytes.data(), bytes.size())))
        return false;
    claims_.emplace(what, Claim{std::move(file), before});
    return true;
}

void CProgramClaims::letGo(const std::string& what) {
    const auto claim = claims_.find(what);
    if (claim == claims_.end())
        return;
    const int fd = claim->second.file.fd();
    if (ownerIn(fd) == number_) {
        std::array<char, sizeof number_> bytes{};
        std::memcpy(bytes.data(), &claim->second.before, bytes.size());
        writeWhole(calls_, fd, std::string_view(bytes.data(), bytes.size())); // else it names a dead program
    }
    claims_.erase(claim);
}

std::string runtimeFolder() {
    if (const char* folder = std::getenv("XDG_RUNTIME_DIR"); folder && folder[0] == '/')
        return std::string(folder) + "/mirovane";
    CFileCalls calls;
    const std::string usual = "/run/user/" + std::to_string(::geteuid());
    if (isOwnFolder(calls, usual))
        return usual + "/mirovane";
    return defaultStateFolder() + "/run-" + computerName();
}

} // namespace mirovane
