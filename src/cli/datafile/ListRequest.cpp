#include "cli/datafile/ListRequest.h"

namespace mirovane {

Result<ListRequest, UsageError> listRequest(const Arguments& arguments) {
    ListRequest request;
    ListFilter& filter = request.state.filter;
    const bool both = arguments.has("--floor") == arguments.has("--misc");
    filter.floor = both || arguments.has("--floor");
    filter.discovered = both || arguments.has("--misc");
    request.state.greatestFirst = arguments.has("--descending");
    request.knownTypesOnly = arguments.has("--type");
    if (request.knownTypesOnly)
        filter.hiddenTypes = ~std::uint32_t{0};
    for (const std::string& name : arguments.values("--type")) {
        const auto type = typeArgument(name);
        if (!type)
            return type.error();
        filter.hiddenTypes &= ~(std::uint32_t{1} << (type.value() - 1));
    }
    if (const auto name = arguments.value("--sort")) {
        const auto column = listColumnFromName(*name);
        if (!column)
            return UsageError{"unknown column \"" + *name + "\": mirovanectl list --help names them"};
        request.state.column = *column;
    }
    return request;
}

std::vector<const CHardware*> requestedRows(const Datafile::Content& content, const ListRequest& request) {
    std::vector<const CHardware*> rows;
    for (const auto& record : content.records) {
        const bool known = !request.knownTypesOnly || !typeName(record->Type).empty();
        if (known && request.state.filter.shows(*record))
            rows.push_back(record.get());
    }
    sortListRows(rows, request.state.column, request.state.greatestFirst);
    return rows;
}

} // namespace mirovane
