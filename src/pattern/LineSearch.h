#pragma once

#include "pattern/Pattern.h"

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>

namespace mirovane {

/// Searches a text line by line for a lower-cased pattern, whatever the case of the text, and stops at the
/// first hit. The text comes in blocks of any size, as it is read from a file:
///
///     CLineSearch search(pattern);
///     while (readBlock(block) && search.feed(block, stop) == CLineSearch::State::More) {}
///     search.finish(stop);
///
/// A line ends at LF or CR LF, which are not part of it. Each block is lower-cased once, not line by line:
/// that makes a search as quick as reading the file. Blocks of 64 KiB to 1 MiB stay in the processor's
/// cache. Used by one thread; the pattern must outlive the search.
class CLineSearch {
public:
    enum class State {
        More,    ///< nothing found yet
        Hit,     ///< line() is the first line that matches
        Ended,   ///< the text is over, no line matched
        Stopped, ///< the stop token ended the search
    };

    /// A line is held in memory; one that is longer is searched in parts of this size.
    static constexpr std::size_t longestLine = std::size_t{16} * 1024 * 1024;

    /// Sees a line that matches, as it is in the text; true to look for more.
    using HitHandler = std::function<bool(std::string_view line)>;

    /// Without a handler the first hit is the last.
    explicit CLineSearch(const CompiledPattern& pattern, HitHandler onHit = {})
        : pattern_(pattern), onHit_(std::move(onHit)) {}

    /// Searches all lines that end in this block. Once the state is not More, blocks are ignored.
    State feed(std::string_view block, const std::stop_token& stop = {});

    /// Searches the last line when no line end follows it. A text that ends in a line end has no further
    /// line.
    State finish(const std::stop_token& stop = {});

    State state() const { return state_; }

    /// The line that ended the search, as it is in the text, not lower-cased.
    const std::string& line() const { return line_; }

    /// Number of that line, counted from 1; without a hit the number of lines searched.
    std::uint64_t lineNumber() const { return lines_; }

    /// Lines that the pattern could not decide within its step limit. They count as lines without a match.
    std::uint64_t undecidedLines() const { return undecided_; }

private:
    void searchLines(std::string_view original, const std::stop_token& stop);
    void searchLine(std::string_view original, std::string_view lowered, const std::stop_token& stop);
    void searchPending(const std::stop_token& stop);

    const CompiledPattern& pattern_;
    HitHandler onHit_;
    State state_ = State::More;
    std::string pending_; ///< beginning of a line whose end is in a later block
    std::string lowered_; ///< working memory, kept from block to block
    std::string line_;
    std::uint64_t lines_ = 0;
    std::uint64_t undecided_ = 0;
};

} // namespace mirovane
