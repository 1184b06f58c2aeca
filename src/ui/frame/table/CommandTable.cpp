#include "ui/frame/table/CommandTable.h"

#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <vector>

namespace mirovane {

namespace {

std::vector<CommandDefinition> allRows() {
    std::vector<CommandDefinition> rows;
    for (const auto part : {fileCommands(), editCommands(), viewCommands(), toolsCommands(), helpCommands()})
        rows.insert(rows.end(), part.begin(), part.end());
    return rows;
}

} // namespace

std::span<const CommandDefinition> commandTable() {
    static const std::vector<CommandDefinition> rows = allRows();
    return rows;
}

QString commandText(std::string_view text) {
    if (text.empty())
        return {};
    return QCoreApplication::translate("Commands", std::string(text).c_str());
}

} // namespace mirovane
