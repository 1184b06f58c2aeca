#pragma once

#include "livestat/search/TextFileSearch.h"
#include "pattern/Pattern.h"

#include <stop_token>
#include <string>
#include <string_view>

namespace mirovane {

/// Whether a file name fits a name with wildcards, by the rules that users of Windows know: `*` takes
/// any run of characters, also none; `?` for one character, or for none at the end of the name and before a
/// dot; "*.*" for every name, with a dot or without, and "report.*" also for "report"; "*." for names without
/// a dot. Any other character means itself, square brackets too. The case of letters (a to z) does not
/// matter. Pure.
bool wildcardMatches(std::string_view name, std::string_view wildcards);

struct FileNameSearchResult {
    SearchResult search;
    bool anyFile = false; ///< at least one file fits the wildcards
};

/// Of the files that fit a path with wildcards, the first in the order of their names whose name matches the
/// lower-cased pattern; null matches none. `/` and `\` part the path; only its last part may have wildcards,
/// and no sub-folder is entered. Folders do not count, links count as what they lead to, names that begin
/// with a dot are like any other. The order is that of the lower-cased bytes. Takes no memory for names,
/// however many there are.
///
/// Any thread; ends within 100 ms of a stop request as long as the disk answers.
FileNameSearchResult searchFileNames(const std::string& path, const CompiledPattern* pattern,
                                     const std::stop_token& stop);

} // namespace mirovane
