#pragma once

#include "model/Hardware.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace mirovane {

/// stampText() for many stamps in a row. To spell out a date in the locale's form takes longer than the rest
/// of a row's text; within a quarter of an hour only the digits of minutes and seconds differ, where the form
/// has them next to each other.
class StampTexts {
public:
    /// Good until the next call.
    const std::string& text(TimeStamp stamp);

private:
    static constexpr std::int64_t span = 900; ///< clocks are changed at whole quarters

    bool learn(std::int64_t quarter);

    std::optional<TimeStamp> stamp_; ///< the one whose text `text_` is
    std::string text_;
    std::optional<std::int64_t> quarter_; ///< the one that was looked at last
    bool learned_ = false;                ///< and the texts of this one differ in these digits only
    std::string pattern_;
    std::size_t digits_ = 0; ///< place of "mm:ss" in it
    int firstMinute_ = 0;
};

} // namespace mirovane
