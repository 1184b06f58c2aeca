#pragma once

#include "model/format/Datafile.h"
#include "platform/files/Files.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace mirovane {

/// The copy of a datafile that was mended by a save.
constexpr const char* beforeRepair = ".before-repair";

/// What the main thread asks of the datafile's file system, and what it is told. They are values, so that a
/// share that hangs holds up the thread that carries them out and nobody else.
namespace DatafileOrders {

/// The records as they are on disk at this moment.
struct Contents {
    Datafile::Content content;
    FileIdentity identity;
    bool writable = true;
};

struct Read {
    std::string path;
    std::chrono::milliseconds patience; ///< for the lock
};

using ReadAnswer = Result<Contents, Datafile::Error>;

struct Write {
    std::string path;
    std::string bytes;
    std::chrono::milliseconds patience; ///< for the lock
    bool mustBeThere = false;           ///< it was: without it a new one would be in the wrong place

    /// What is replaced; a file that is another one is read instead. Nothing: whatever is there.
    std::optional<FileIdentity> known;
    bool readFirst = false; ///< also where it is that one: what is in it was never read

    bool keepsOld = false; ///< as a copy beside it

    /// Of the answer before, which had read it: nobody else gets between. Null: is to be locked.
    std::shared_ptr<LockedFile> locked;
};

struct Written {
    FileIdentity identity;
    std::string copy; ///< where the old one is kept; empty where it is not
};

/// Another station has saved. The lock is to be given to the next order, or to letGo().
struct Changed {
    ReadAnswer read;
    std::shared_ptr<LockedFile> locked;
};

using WriteAnswer = std::variant<Written, Changed, FileError>;

// Any thread, one at a time. Each waits as long as the file system does.

ReadAnswer carryOut(Files& files, const Read& order);
WriteAnswer carryOut(Files& files, Write order);

} // namespace DatafileOrders

} // namespace mirovane
