#pragma once

#include "model/EditJournal.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// One record that the user changed, added or removed, as it is kept until a save takes it to the datafile.
struct KeptEdit {
    enum class Kind : std::uint8_t { Changed = 1, Added = 2, Removed = 3 };

    Kind kind = Kind::Changed;
    CHardware base;  ///< changed, removed: as it was when the datafile was last read
    CHardware ours;  ///< changed, added: as it is
    FieldSet byUser; ///< changed: which fields the user has changed

    /// The next device behind a changed one that was not added here; 0 when there is none. By its place in
    /// the list a device is known that has nothing else in common with what it was.
    std::int32_t follower = 0;
};

/// The file in which they are kept: a head that names the datafile, then entries one after the other, each
/// with its length and a checksum. A later entry replaces the earlier one of its number, so that an edit only
/// has to be added at the end. What a power cut left of the last entry does not count.
namespace KeptEditsFormat {

std::string head(const std::string& datafile);
std::string entry(std::uint32_t number, const KeptEdit& edit);

/// The entry of this number counts no more.
std::string withdrawal(std::uint32_t number);

struct Content {
    std::string datafile;
    std::map<std::uint32_t, KeptEdit> edits; ///< in the order in which they were first made
    bool damaged = false;                    ///< bytes behind the last entry that make sense
};

/// What can be read of it. Trusts no length.
Content read(std::string_view bytes);

} // namespace KeptEditsFormat

} // namespace mirovane
