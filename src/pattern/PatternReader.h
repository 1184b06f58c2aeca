#pragma once

#include "pattern/Pattern.h"

#include <string_view>

namespace mirovane {

/// A cursor over a pattern's bytes. Never reads past the end; refuses the pattern with the place where it
/// stands.
class CPatternReader {
public:
    explicit CPatternReader(std::string_view text) : text_(text) {}

    bool atEnd() const { return position_ >= text_.size(); }
    bool at(char c) const { return !atEnd() && text_[position_] == c; }
    std::size_t position() const { return position_; }
    std::string_view rest() const { return text_.substr(position_); }

    std::string_view since(std::size_t start) const { return text_.substr(start, position_ - start); }

    /// Only where atEnd() is false.
    char take() { return text_[position_++]; }

    bool accept(std::string_view expected) {
        if (!rest().starts_with(expected))
            return false;
        position_ += expected.size();
        return true;
    }

    void skip(std::size_t count) { position_ += count; }

    /// The rest of \cX: the control character that it names. `start` is where the escape began.
    char takeControl(std::size_t start);

    [[noreturn]] static void fail(PatternFault fault, std::size_t where) { throw bad_regexpr(fault, where); }

private:
    std::string_view text_;
    std::size_t position_ = 0;
};

} // namespace mirovane
