#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

// What Samba's `net rpc registry` prints, read strictly: a text that is not wholly of the expected shape
// gives nothing. The texts hold what another computer sent and may be anything. All of it is in UTF-8.

/// A value as `getvalue` prints it.
struct PrintedRegistryValue {
    std::string type; ///< such as REG_SZ

    /// As the registry stores them; nothing when this type's data are not printed.
    std::optional<std::string> data;
};

std::optional<PrintedRegistryValue> parsePrintedValue(std::string_view output);

/// Names of the sub-keys of a key, as `enumerate` prints them before the key's values.
std::optional<std::vector<std::string>> parseSubKeys(std::string_view output);

/// Data of one value of the first key that `export` prints, once they are complete; nothing before and when
/// the key has no such value. Texts come with their final zero byte.
std::optional<std::string> parseExportedValue(std::string_view output, const std::string& valueName);

} // namespace mirovane
