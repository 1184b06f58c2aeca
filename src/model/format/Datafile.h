#pragma once

#include "model/records/Hardware.h"
#include "platform/Result.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// The byte format of a datafile; docs/manual/datafile.md is its one-page description.
namespace Datafile {

constexpr std::int32_t currentVersion = 2008;

/// One record more needs the long count form, which moves the version away from where every station looks for
/// it: such a file could be written but never opened again.
constexpr std::size_t maxRecords = 65534;

/// Records in stored order. Addresses stay what they are for a record's whole life.
using RecordList = std::vector<std::unique_ptr<CHardware>>;

struct Error {
    enum class Kind { CannotRead, NotADatafile, Damaged, UnknownVersion };

    Kind kind = Kind::Damaged;
    std::size_t offset = 0; ///< byte at which reading stopped making sense
    std::size_t record = 0; ///< counted from 0 in file order
    std::string sentence;   ///< complete, with offset and record, ready to be shown
};

struct Content {
    std::int32_t fileVersion = 0; ///< 2002, 2003, 2004 or 2008
    RecordList records;
    std::size_t strayBytes = 0; ///< after the last record; they mean nothing
};

/// Decodes a whole file. Never trusts a length or a count before it has compared it with the bytes that
/// remain, and never returns part of a file. Out of memory is an error of kind CannotRead.
Result<Content, Error> decode(std::string_view bytes);

/// Whether a file that begins like this is a datafile, sound or not, and not text of some kind.
constexpr std::size_t beginningSize = 32;
bool beginsLikeDatafile(std::string_view beginning);

/// The 2008 layout, whatever the file was.
std::string encode(const RecordList& records);

/// The same with each record as `shown` gives it.
using RecordView = std::function<const CHardware&(const CHardware&)>;
std::string encode(const RecordList& records, const RecordView& shown);

} // namespace Datafile

} // namespace mirovane
