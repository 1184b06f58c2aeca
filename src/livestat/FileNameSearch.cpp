#include "livestat/FileNameSearch.h"

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

enum class Wildcard : char {
    Literal,
    AnyRun,       ///< *
    RunBeforeDot, ///< * in front of a dot: takes everything but the name's last dot
    OneOrNone,    ///< ?
    DotOrEnd,     ///< a dot in front of a wildcard
};

struct Element {
    Wildcard kind = Wildcard::Literal;
    char literal = 0;
};

bool isWildcard(char c) {
    return c == '*' || c == '?';
}

std::vector<Element> elementsOf(std::string_view wildcards) {
    std::vector<Element> elements;
    for (std::size_t i = 0; i < wildcards.size(); ++i) {
        const char c = wildcards[i];
        const char next = i + 1 < wildcards.size() ? wildcards[i + 1] : '\0';
        if (c == '*')
            elements.push_back({next == '.' ? Wildcard::RunBeforeDot : Wildcard::AnyRun});
        else if (c == '?')
            elements.push_back({Wildcard::OneOrNone});
        else if (c == '.' && isWildcard(next))
            elements.push_back({Wildcard::DotOrEnd});
        else if (c != '.' || i == 0 || next != '\0' || wildcards[i - 1] != '*') // "*." is all of RunBeforeDot
            elements.push_back({Wildcard::Literal, c});
    }
    return elements;
}

/// Which elements can come next once a part of the name is taken; element number size() is the end.
class Places {
public:
    explicit Places(const std::vector<Element>& elements)
        : elements_(elements), now_(elements.size() + 1), next_(elements.size() + 1) {
        now_[0] = true;
    }

    void take(char c, bool lastDot) {
        std::fill(next_.begin(), next_.end(), false);
        skipOptional(c, false);
        for (std::size_t i = 0; i < elements_.size(); ++i) {
            if (now_[i])
                takeAt(i, c, lastDot);
        }
        now_.swap(next_);
    }
    bool atEnd() {
        skipOptional('\0', true);
        return now_.back();
    }

private:
    /// Elements that may stand for nothing in front of `c`.
    void skipOptional(char c, bool atEnd) {
        for (std::size_t i = 0; i < elements_.size(); ++i) {
            const Wildcard kind = elements_[i].kind;
            const bool run = kind == Wildcard::AnyRun || kind == Wildcard::RunBeforeDot;
            const bool none =
                (kind == Wildcard::OneOrNone && (atEnd || c == '.')) || (kind == Wildcard::DotOrEnd && atEnd);
            if (now_[i] && (run || none))
                now_[i + 1] = true;
        }
    }
    void takeAt(std::size_t i, char c, bool lastDot) {
        switch (elements_[i].kind) {
        case Wildcard::Literal:
            next_[i + 1] = next_[i + 1] || c == elements_[i].literal;
            break;
        case Wildcard::AnyRun:
            next_[i] = true;
            break;
        case Wildcard::RunBeforeDot:
            next_[i] = next_[i] || !lastDot;
            break;
        case Wildcard::OneOrNone:
            next_[i + 1] = next_[i + 1] || c != '.';
            break;
        case Wildcard::DotOrEnd:
            next_[i + 1] = next_[i + 1] || c == '.';
            break;
        }
    }

    const std::vector<Element>& elements_;
    std::vector<bool> now_, next_;
};

bool matches(const std::vector<Element>& elements, std::string_view lowered) {
    Places places(elements);
    const std::size_t lastDot = lowered.rfind('.');
    for (std::size_t i = 0; i < lowered.size(); ++i)
        places.take(lowered[i], i == lastDot);
    return places.atEnd();
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
class BestName {
public:
    BestName(const CompiledPattern* pattern, const std::stop_token& stop, FileNameSearchResult& result)
        : pattern_(pattern), stop_(stop), result_(result) {}

    void offer(const std::string& name, const std::string& lowered) {
        result_.anyFile = true;
        ++result_.search.number;
        if (!pattern_ || (best_ && std::tie(lowered, name) >= std::tie(*best_, result_.search.text)))
            return;
        switch (pattern_->search(lowered, stop_)) {
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
    result.end = SearchResult::End::Unreadable;
    result.trouble = std::generic_category().message(error);
    return result;
}

} // namespace

bool wildcardMatches(std::string_view name, std::string_view wildcards) {
    return matches(elementsOf(lowerCased(wildcards)), lowerCased(name));
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
    const std::vector<Element> elements = elementsOf(lowerCased(split.wildcards));
    BestName best(pattern, stop, result);
    errno = 0;
    while (const dirent* entry = stop.stop_requested() ? nullptr : readdir(folder.get())) {
        const std::string name = entry->d_name;
        const std::string lowered = lowerCased(name);
        if (matches(elements, lowered) && !isFolder(folder.get(), *entry))
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
