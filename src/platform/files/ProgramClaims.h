#pragma once

#include "platform/files/FileCalls.h"
#include "platform/files/OpenFile.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace mirovane {

/// Which of the programs of this user on this computer does something with a datafile that only one of them
/// should: two of them have the same name in the datafile. For each such thing there is a small file with the
/// number of the program that took it last; as long as that program lives, it keeps a lock on the byte at
/// that number. So a claim can be taken away from a program, which sees it as soon as it looks, and the
/// system ends the claim of one that was killed. Main thread; `calls` outlives this object.
class CProgramClaims {
public:
    /// The file is made in `folder` by the first claim.
    CProgramClaims(CFileCalls& calls, std::string folder);

    const std::string& folder() const { return folder_; }

    /// From now on for this datafile, to which claims move along; with an empty path nobody claims anything.
    void setDatafile(const std::string& path);

    /// Another program that is alive took `what` last.
    bool elsewhere(const std::string& what) const;

    /// From whoever has it. False, and errno, when nobody would see it.
    bool take(const std::string& what);

    /// Whoever had it before take(), and is alive, has it again. Nothing happens where another program took
    /// it since.
    void letGo(const std::string& what);

private:
    struct Claim {
        COpenFile file; ///< with the lock
        std::uint64_t before = 0;
    };

    std::string pathOf(const std::string& what) const;
    std::optional<std::uint64_t> ownerIn(int fd) const;

    CFileCalls& calls_;
    std::string folder_;
    std::string datafile_;
    std::uint64_t number_; ///< of this program
    std::map<std::string, Claim> claims_;
};

/// $XDG_RUNTIME_DIR/mirovane. Without that variable, as in a cron job, where a login would have it; where
/// nobody is logged in, a folder of this computer in the state folder, which the computers of a site may
/// share.
std::string runtimeFolder();

} // namespace mirovane
