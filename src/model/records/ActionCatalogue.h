#pragma once

#include "model/records/Criteria.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace mirovane {

/// Which values of a criteria row mean anything for an action. The others are not offered for editing.
struct ActionInputs {
    bool Argument = false;
    bool Extraction = false; ///< Delimiter and FieldPos
    bool SearchFor = false;
    bool IfMatch = false; ///< rows 7 to 11
    bool Condition = false;
};

/// A row as somebody might fill it in, to be shown and never stored. All empty: there is none.
struct ActionExample {
    std::string_view Argument = {};
    std::string_view Delimiter = {};
    std::string_view FieldPos = {};
    std::string_view SearchFor = {};
    std::string_view Condition = {};
    std::string_view description = {};

    bool empty() const { return description.empty(); }
};

/// What people are told about an action where they choose it.
struct ActionEntry {
    std::string_view name;
    ActionInputs inputs = {};
    std::string_view argumentSyntax = {};
    ActionExample testExample = {};  ///< as Live Stat test (row 0)
    ActionExample fieldExample = {}; ///< as field rule (rows 1 to 11)
};

/// Every action once.
std::span<const ActionEntry> actionCatalogue();

/// A name that no action has (a datafile may hold any text) is treated as "Do Nothing".
const ActionEntry& actionEntry(std::string_view name);

/// What the Condition of a row can be, in the order of its list.
std::span<const std::string_view> conditionsForRow(int row);

/// False for the rows of a jack whose action cannot be chosen: a jack has no name, address or texts of its
/// own to fill.
bool actionChoosable(std::int32_t type, int row);

} // namespace mirovane
