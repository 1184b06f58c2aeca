#pragma once

#include "model/records/Hardware.h"
#include "pattern/Pattern.h"

#include <cstdint>
#include <stop_token>
#include <string>

namespace mirovane {

/// What the search of a text file, or of the names in a folder, came to.
struct SearchResult {
    enum class End {
        Hit,
        NoHit,
        Missing,    ///< no such file, or not a regular one
        Unreadable, ///< not allowed, or the disk or its share failed: what the file holds is not known
        Stopped,    ///< the stop token ended it
    };

    End end = End::NoHit;
    std::string text;            ///< the first line or file name that matches, as it is there
    std::uint64_t number = 0;    ///< of that line, counted from 1; without a hit how many were searched
    std::uint64_t undecided = 0; ///< lines that took the pattern too many steps; they count as no match
    std::string trouble;         ///< a few words, for people

    /// Somebody wrote to the file during the search, perhaps after the place that was read last.
    bool changedMeanwhile = false;
};

/// The path of a text file as this system spells it: backslashes part folders, too, unless the path as it
/// is names something.
std::string nativePath(const std::string& path);

struct TextFileStatus {
    enum class Kind {
        File,
        Missing,    ///< nothing has this name, or it is not a regular file
        Unreadable, ///< whether there is one cannot be found out
    };

    Kind kind = Kind::File;
    TimeStamp stamp = 0; ///< when it was changed last; never 0, which means "never searched"
    std::string trouble; ///< why it is not a file that can be read, a few words
};

/// Devices and pipes are not opened: reading those can wait for ever.
TextFileStatus textFileStatus(const std::string& path);

/// How a search ends that this error keeps from its file or folder: only what is known not to be there is
/// missing.
SearchResult::End endOf(int error);

/// The first line that matches the lower-cased pattern, whatever the case of the text.
///
/// A line ends at LF or CR LF; a CR alone is part of its line, a byte order mark at the beginning of the file
/// is not. A line of more than 16 MiB is searched in parts of that size. The file is read in blocks, so its
/// size costs time only; what a writer appends during the search is read up to 64 MiB, then the search ends:
/// a log that grows as quickly as it is read would hold the worker for ever. Nothing is locked.
///
/// Any thread; ends within 100 ms of a stop request as long as the disk answers.
SearchResult searchTextFile(const std::string& path, const CompiledPattern& pattern,
                            const std::stop_token& stop);

} // namespace mirovane
