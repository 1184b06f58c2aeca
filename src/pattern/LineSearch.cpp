#include "pattern/LineSearch.h"

#include <algorithm>

namespace mirovane {

namespace {

std::string_view withoutCarriageReturn(std::string_view line) {
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

} // namespace

CLineSearch::State CLineSearch::feed(std::string_view block, const std::stop_token& stop) {
    if (state_ == State::More && !pending_.empty()) {
        const std::size_t end = block.find('\n');
        pending_ += block.substr(0, end);
        block = end == std::string_view::npos ? std::string_view() : block.substr(end + 1);
        if (end != std::string_view::npos)
            searchPending(stop);
    }
    if (state_ == State::More) {
        const std::size_t lastEnd = block.rfind('\n');
        const std::size_t whole = lastEnd == std::string_view::npos ? 0 : lastEnd + 1;
        searchLines(block.substr(0, whole), stop);
        pending_ += block.substr(whole);
    }
    while (state_ == State::More && pending_.size() > longestLine) {
        const std::string tail = pending_.substr(longestLine);
        pending_.resize(longestLine);
        searchPending(stop);
        pending_ = tail;
    }
    return state_;
}

CLineSearch::State CLineSearch::finish(const std::stop_token& stop) {
    if (state_ == State::More && !pending_.empty()) {
        // No line end follows it: a carriage return at its end belongs to the line.
        lowered_ = lowerCased(pending_);
        searchLine(pending_, lowered_, stop);
    }
    if (state_ == State::More)
        state_ = State::Ended;
    return state_;
}

void CLineSearch::searchPending(const std::stop_token& stop) {
    const std::string_view original = withoutCarriageReturn(pending_);
    lowered_.resize(std::max(lowered_.size(), original.size()));
    lowerCaseInto(original.data(), original.size(), lowered_.data());
    searchLine(original, {lowered_.data(), original.size()}, stop);
    pending_.clear();
}

void CLineSearch::searchLines(std::string_view original, const std::stop_token& stop) {
    lowered_.resize(std::max(lowered_.size(), original.size()));
    lowerCaseInto(original.data(), original.size(), lowered_.data());
    const std::string_view lowered(lowered_.data(), original.size());
    for (std::size_t begin = 0; begin < original.size() && state_ == State::More;) {
        const std::size_t end = lowered.find('\n', begin);
        const std::size_t size = withoutCarriageReturn(lowered.substr(begin, end - begin)).size();
        searchLine(original.substr(begin, size), lowered.substr(begin, size), stop);
        begin = end + 1;
    }
}

void CLineSearch::searchLine(std::string_view original, std::string_view lowered,
                             const std::stop_token& stop) {
    if (stop.stop_requested()) {
        state_ = State::Stopped;
        return;
    }
    ++lines_;
    switch (SearchPattern(pattern_, lowered, stop)) {
    case PatternOutcome::Match:
        if (!onHit_ || !onHit_(original)) {
            line_ = original;
            state_ = State::Hit;
        }
        break;
    case PatternOutcome::Stopped:
        state_ = State::Stopped;
        break;
    case PatternOutcome::LimitReached:
        ++undecided_;
        break;
    case PatternOutcome::NoMatch:
        break;
    }
}

} // namespace mirovane
