#pragma once

#include "pattern/PatternReader.h"

#include <array>
#include <cstdint>
#include <string>

namespace mirovane {

/// The bytes that a character set [...] takes.
class CPatternSet {
public:
    static constexpr unsigned size = 256;

    /// `low` is not above `high`.
    constexpr CPatternSet& add(unsigned char low, unsigned char high) {
        constexpr std::uint64_t all = ~std::uint64_t{0};
        for (unsigned word = low / 64; word <= high / 64U; ++word) {
            const unsigned first = word == low / 64U ? low % 64U : 0;
            const unsigned last = word == high / 64U ? high % 64U : 63;
            words_[word] |= (all << first) & (all >> (63 - last));
        }
        return *this;
    }
    constexpr CPatternSet& add(unsigned char byte) { return add(byte, byte); }
    constexpr CPatternSet& add(const CPatternSet& other) {
        for (std::size_t i = 0; i < words_.size(); ++i)
            words_[i] |= other.words_[i];
        return *this;
    }
    constexpr CPatternSet complement() const {
        CPatternSet set;
        for (std::size_t i = 0; i < words_.size(); ++i)
            set.words_[i] = ~words_[i];
        return set;
    }

    constexpr bool contains(unsigned char byte) const { return (words_[byte / 64] >> byte % 64 & 1) != 0; }
    unsigned count() const;

    /// The first byte from `from` on that is a member, or the first that is not; `size` when there is no
    /// such byte.
    unsigned next(unsigned from, bool member) const;

private:
    std::array<std::uint64_t, 4> words_{};
};

/// Reads a set whose opening bracket, at `start`, was just taken; leaves the reader behind the closing one.
CPatternSet readPatternSet(CPatternReader& reader, std::size_t start);

/// The set in the search engine's language, spelled so that nothing in it can be taken for a construct of
/// that engine.
std::string patternSetText(const CPatternSet& set);

/// A byte that means itself, inside a set or outside: as it is where no engine ever gave it another
/// meaning, else as a hexadecimal code.
void appendLiteral(std::string& text, unsigned char byte);

} // namespace mirovane
