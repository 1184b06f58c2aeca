#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace mirovane {

/// What an undo of an edit is called by: "Delete 3 devices". Kept as a pattern with "%1" for the number, so
/// that a window can say it in the user's language.
struct EditName {
    std::string pattern;
    std::size_t count = 0;

    EditName() = default;
    EditName(const char* fixed) : pattern(fixed) {}
    EditName(std::string fixed, std::size_t number = 0) : pattern(std::move(fixed)), count(number) {}

    /// In English, as the log says it.
    std::string words() const {
        std::string text = pattern;
        if (const std::size_t place = text.find("%1"); place != std::string::npos)
            text.replace(place, 2, std::to_string(count));
        return text;
    }

    friend bool operator==(const EditName& name, std::string_view words) { return name.words() == words; }
};

} // namespace mirovane
