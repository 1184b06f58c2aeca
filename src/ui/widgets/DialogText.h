#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace mirovane {

/// The program's own words, which are UTF-8.
QString qText(std::string_view words);

/// A field's bytes as people see them.
QString shownText(std::string_view bytes);

/// What was typed, as a field stores it. Not the way back from shownText(): bytes of another code page become
/// UTF-8. A field that nobody changed must not be stored again.
std::string storedText(const QString& text);

} // namespace mirovane
