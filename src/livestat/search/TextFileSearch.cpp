#include "livestat/search/TextFileSearch.h"

#include "pattern/LineSearch.h"
#include "platform/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <vector>

namespace mirovane {

namespace {

/// Fits into the processor's cache together with its lower-cased copy.
constexpr std::size_t blockSize = std::size_t{128} * 1024;

constexpr std::int64_t mostGrowth = std::int64_t{64} * 1024 * 1024;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string errorText(int error) {
    return std::generic_category().message(error);
}

bool isTextFile(const struct stat& status, std::string& trouble) {
    if (S_ISREG(status.st_mode))
        return true;
    trouble = S_ISDIR(status.st_mode) ? "is a folder" : "is not a file but a device or a pipe";
    return false;
}

/// Opened for reading without waiting for anybody and without becoming the terminal of this program; what a
/// path names may change between two looks at it.
CDescriptor openTextFile(const std::string& path, struct stat& status, SearchResult& failed) {
    failed.end = SearchResult::End::Missing;
    const auto failedWith = [&failed](int error) {
        failed.end = endOf(error);
        failed.trouble = errorText(error);
        return CDescriptor();
    };
    if (stat(path.c_str(), &status) != 0)
        return failedWith(errno);
    if (!isTextFile(status, failed.trouble))
        return {};
    CDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file || fstat(file.get(), &status) != 0)
        return failedWith(errno);
    return isTextFile(status, failed.trouble) ? std::move(file) : CDescriptor();
}

ssize_t readBlock(const CDescriptor& file, std::vector<char>& block) {
    ssize_t size = 0;
    do
        size = read(file.get(), block.data(), block.size());
    while (size < 0 && errno == EINTR);
    return size;
}

std::string_view withoutMark(std::string_view block) {
    return block.starts_with(byteOrderMark) ? block.substr(byteOrderMark.size()) : block;
}

/// False when the disk failed; then `trouble` says how.
bool feedAll(const CDescriptor& file, std::int64_t end, CLineSearch& search, const std::stop_token& stop,
             std::string& trouble) {
    std::vector<char> block(blockSize);
    for (std::int64_t done = 0; done < end && search.state() == CLineSearch::State::More;) {
        const ssize_t size = readBlock(file, block);
        if (size < 0)
            trouble = errorText(errno);
        if (size <= 0)
            return size == 0;
        const std::string_view bytes(block.data(), static_cast<std::size_t>(size));
        search.feed(done == 0 ? withoutMark(bytes) : bytes, stop);
        done += size;
        // A line that goes on from block to block is not searched, so that nobody has looked at the token.
        if (stop.stop_requested())
            return true;
    }
    return true;
}

SearchResult resultOf(const CLineSearch& search, const std::stop_token& stop) {
    SearchResult result;
    result.number = search.lineNumber();
    result.undecided = search.undecidedLines();
    if (search.state() == CLineSearch::State::Hit) {
        result.end = SearchResult::End::Hit;
        result.text = search.line();
    } else if (stop.stop_requested()) {
        result.end = SearchResult::End::Stopped;
    }
    return result;
}

bool changedSince(const CDescriptor& file, const struct stat& before) {
    struct stat now {};
    return fstat(file.get(), &now) != 0 || now.st_size != before.st_size ||
           now.st_mtim.tv_sec != before.st_mtim.tv_sec || now.st_mtim.tv_nsec != before.st_mtim.tv_nsec;
}

} // namespace

std::string nativePath(const std::string& path) {
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native == path || access(path.c_str(), F_OK) == 0 ? path : native;
}

SearchResult::End endOf(int error) {
    const bool missing = error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == ELOOP;
    return missing ? SearchResult::End::Missing : SearchResult::End::Unreadable;
}

TextFileStatus textFileStatus(const std::string& path) {
    using Kind = TextFileStatus::Kind;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        const int error = errno;
        return {endOf(error) == SearchResult::End::Missing ? Kind::Missing : Kind::Unreadable, 0,
                errorText(error)};
    }
    std::string trouble;
    if (!isTextFile(status, trouble))
        return {Kind::Missing, 0, trouble};
    using Limits = std::numeric_limits<TimeStamp>;
    const std::int64_t changed = std::clamp<std::int64_t>(status.st_mtime, Limits::min(), Limits::max());
    return {Kind::File, changed == 0 ? 1 : static_cast<TimeStamp>(changed), {}};
}

SearchResult searchTextFile(const std::string& path, const CompiledPattern& pattern,
                            const std::stop_token& stop) {
    struct stat status {};
    SearchResult unreadable;
    const CDescriptor file = openTextFile(path, status, unreadable);
    if (!file)
        return unreadable;
    unreadable.end = SearchResult::End::Unreadable;
    posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    CLineSearch search(pattern);
    if (!feedAll(file, status.st_size + mostGrowth, search, stop, unreadable.trouble))
        return unreadable;
    if (!stop.stop_requested())
        search.finish(stop);
    SearchResult result = resultOf(search, stop);
    result.changedMeanwhile = changedSince(file, status);
    return result;
}

} // namespace mirovane
