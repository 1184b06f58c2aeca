#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace mirovane {

/// A set of places in the record list, one bit each: 65,000 records take 8 KB and a search for the next
/// member reads at most a thousand words.
class CPlaceSet {
public:
    void clear(std::size_t places) { words_.assign((places + wordBits - 1) / wordBits, 0); }

    void set(std::size_t place, bool member) {
        if (place / wordBits >= words_.size())
            words_.resize(place / wordBits + 1);
        const std::uint64_t bit = std::uint64_t{1} << (place % wordBits);
        words_[place / wordBits] = member ? words_[place / wordBits] | bit : words_[place / wordBits] & ~bit;
    }

    /// The first member at `from` or behind it, before `end`.
    std::optional<std::size_t> find(std::size_t from, std::size_t end) const {
        std::size_t word = from / wordBits;
        if (from >= end || word >= words_.size())
            return std::nullopt;
        std::uint64_t bits = words_[word] & (~std::uint64_t{0} << (from % wordBits));
        while (bits == 0) {
            if (++word >= words_.size() || word * wordBits >= end)
                return std::nullopt;
            bits = words_[word];
        }
        const std::size_t place = word * wordBits + static_cast<std::size_t>(std::countr_zero(bits));
        return place < end ? std::optional(place) : std::nullopt;
    }

private:
    static constexpr std::size_t wordBits = 64;
    std::vector<std::uint64_t> words_;
};

} // namespace mirovane
