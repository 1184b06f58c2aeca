#pragma once

#include "cli/Arguments.h"
#include "model/Datafile.h"
#include "model/ListRows.h"

#include <vector>

namespace mirovane {

/// Which devices a command shows, and in which order: --floor, --misc, --type, --sort and --descending.
struct ListRequest {
    ListViewState state;
    bool knownTypesOnly = false; ///< --type was given, and a code that is no type has no name to ask for
};

Result<ListRequest, UsageError> listRequest(const Arguments& arguments);

/// The pointers live as long as the content.
std::vector<const CHardware*> requestedRows(const Datafile::Content& content, const ListRequest& request);

} // namespace mirovane
