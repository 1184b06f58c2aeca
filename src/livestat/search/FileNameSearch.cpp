#include "livestat/search/FileNameSearch.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <tuple>
#include <vector>

namespace mirovane {

namespace {

bool isWildcard(char c) {
    return c == '*' || c == '?';
}

/// Both texts are lower-cased. Works through the wildcards from their end: `rest[j]` says whether what
/// follows fits the name from its byte j on. That takes as many steps as the lengths multiplied, where trying
/// each star's length in turn would take for ever on "*a*a*a*a".
bool fits(std::string_view name, std::string_view wildcards) {
    const std::size_t end = name.size();
    const std::size_t lastDot = name.rfind('.');
    std::vector<bool> rest(end + 1, false);
    rest[end] = true;
    for (std::size_t i = wildcards.size(); i-- > 0;) {
        const char c = wildcards[i];
        const char next = i + 1 < wildcards.size() ? wildcards[i + 1] : '\0';
        const bool dotMayEnd = c == '.' && isWildcard(next);
        if (c == '.' && next == '\0' && i > 0 && wildcards[i - 1] == '*')
            continue; // "*.": its star already takes no dot
        std::vector<bool> now(end + 1, false);
        for (std::size_t j = end + 1; j-- > 0;) {
            const bool atDot = j < end && name[j] == '.';
            if (c == '*') // in front of a dot it leaves the name's last dot to that
                now[j] = rest[j] || (j < end && now[j + 1] && !(next == '.' && j == lastDot));
            else if (c == '?')
                now[j] = j < end && !atDot ? rest[j + 1] : rest[j];
            else if (j < end)
                now[j] = name[j] == c && rest[j + 1];
            else
                now[j] = dotMayEnd && rest[j];
        }
        rest.swap(now);
    }
    return rest[0];
}

struct SplitPath {
    std::string folder;
    std::string wildcards;
};

SplitPath splitPath(const std::string& path) {
    const std::size_t end = path.find_last_of("/\\");
    if (end == std::string::npos)
        return {".", path};
    SplitPath split{path.substr(0, end + 1), path.substr(end + 1)};
    std::replace(split.folder.begin(), split.folder.end(), '\\', '/');
    return split;
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

bool isFolder(DIR* folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_DIR;
    struct stat status {};
    return fstatat(dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

/// The search while the folder is read: keeps the best hit so far instead of the names.
class CBestName {
public:
    CBestName(const CompiledPattern* pattern, const std::stop_token& stop, FileNameSearchResult& result)
        : pattern_(pattern), stop_(stop), result_(result) {}

    void offer(const std::string& name, const std::string& lowered) {
        result_.anyFile = true;
        ++result_.search.number;
        if (!pattern_ || (best_ && std::tie(lowered, name) >= std::tie(*best_, result_.search.text)))
            return;
        switch (SearchPattern(*pattern_, lowered, stop_)) {
        case PatternOutcome::Match:
            best_ = lowered;
            result_.search.text = name;
            result_.search.end = SearchResult::End::Hit;
            break;
        case PatternOutcome::LimitReached:
            ++result_.search.undecided;
            break;
        case PatternOutcome::Stopped:
        case PatternOutcome::NoMatch:
            break;
        }
    }

private:
    const CompiledPattern* pattern_;
    const std::stop_token& stop_;
    FileNameSearchResult& result_;
    std::optional<std::string> best_; ///< lower-cased
};

SearchResult unreadable(int error) {
    SearchResult result;
    result.end = endOf(error);
    result.trouble = std::generic_category().message(error);
    return result;
}

} // namespace

bool wildcardMatches(std::string_view name, std::string_view wildcards) {
    return fits(lowerCased(name), lowerCased(wildcards));
}

FileNameSearchResult searchFileNames(const std::string& path, const CompiledPattern* pattern,
                                     const std::stop_token& stop) {
    FileNameSearchResult result;
    const SplitPath split = splitPath(path);
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(split.folder.c_str()));
    if (!folder) {
        result.search = unreadable(errno);
        return result;
    }
    const std::string wildcards = lowerCased(split.wildcards);
    CBestName best(pattern, stop, result);
    errno = 0;
    while (const dirent* entry = stop.stop_requested() ? nullptr : readdir(folder.get())) {
        const std::string name = entry->d_name;
        const std::string lowered = lowerCased(name);
        if (fits(lowered, wildcards) && !isFolder(folder.get(), *entry))
            best.offer(name, lowered);
        errno = 0;
    }
    if (stop.stop_requested())
        result.search.end = SearchResult::End::Stopped;
    else if (errno != 0)
        result.search = unreadable(errno);
    return result;
}

} // namespace mirovane
