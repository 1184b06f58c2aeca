#pragma once

#include "cli/base/Arguments.h"
#include "model/format/Datafile.h"
#include "model/rows/ListRows.h"

#include <vector>

namespace mirovane {

inline constexpr std::array listRequestOptions{
    OptionDefinition{"--floor", 0, "", "devices on the floor map only"},
    OptionDefinition{"--misc", 0, "", "devices in the Discovered/Misc window only"},
    OptionDefinition{"--type", 1, "NAME", "devices of this type only; may be repeated"},
    OptionDefinition{"--sort", 1, "COLUMN", "by this column's title or field (usually Modified)"},
    OptionDefinition{"--descending", 0, "", "greatest first"},
};

/// Which devices a command shows, and in which order: --floor, --misc, --type, --sort and --descending.
struct ListRequest {
    ListViewState state;
    bool knownTypesOnly = false; ///< --type was given, and a code that is not a type has no name to ask for
};

Result<ListRequest, UsageError> listRequest(const Arguments& arguments);

/// The pointers live as long as the content.
std::vector<const CHardware*> requestedRows(const Datafile::Content& content, const ListRequest& request);

} // namespace mirovane
