#include "cli/Commands.h"
#include "cli/DatafileCheck.h"
#include "cli/Datafiles.h"
#include "cli/RecordJson.h"

#include <QJsonArray>

namespace mirovane {

namespace {

void printCountLine(Output& out, std::string_view name, const DeviceCount& count) {
    out.printLine("  " + std::string(name) + ": " + std::to_string(count.onFloor + count.discovered) + " [" +
                  std::to_string(count.onFloor) + "] [" + std::to_string(count.discovered) + "]");
}

std::string kindOfSpecial(std::int32_t type) {
    return type == DatafileReport::criteriaType ? "CriteriaRecord" : recordKind(type);
}

std::string deviceKind(std::int32_t floorType) {
    const std::string_view name = typeName(floorType);
    return name.empty() ? "type " + std::to_string(floorType) : std::string(name);
}

void printReport(Output& out, const DatafileReport& report) {
    out.printLine("version: " + std::to_string(report.fileVersion));
    out.printLine("records: " + std::to_string(report.records));
    out.printLine("devices: total [floor map] [Discovered/Misc]");
    for (const auto& [type, count] : report.devices)
        printCountLine(out, deviceKind(type), count);
    out.printLine("special records:");
    for (auto entry = report.special.rbegin(); entry != report.special.rend(); ++entry)
        out.printLine("  " + kindOfSpecial(entry->first) + ": " + std::to_string(entry->second));
    out.printLine("oddities: " + std::to_string(report.oddities.size()));
    for (const Oddity& oddity : report.oddities) {
        std::string where = "  ";
        if (oddity.record != Oddity::wholeFile)
            where += "record " + std::to_string(oddity.record) +
                     (oddity.recID != 0 ? " (RecID " + std::to_string(oddity.recID) + ")" : "") + ": ";
        out.printLine(where + printable(oddity.text));
    }
}

QJsonObject reportObject(const DatafileReport& report) {
    QJsonObject devices;
    for (const auto& [type, count] : report.devices)
        devices.insert(jsonKey(deviceKind(type)),
                       QJsonObject{{jsonKey("floor"), static_cast<qint64>(count.onFloor)},
                                   {jsonKey("misc"), static_cast<qint64>(count.discovered)}});
    QJsonObject special;
    for (const auto& [type, count] : report.special)
        special.insert(jsonKey(kindOfSpecial(type)), static_cast<qint64>(count));
    QJsonArray oddities;
    for (const Oddity& oddity : report.oddities) {
        const bool placed = oddity.record != Oddity::wholeFile;
        oddities.append(QJsonObject{
            {jsonKey("record"), placed ? QJsonValue(static_cast<qint64>(oddity.record)) : QJsonValue()},
            {jsonKey("RecID"), oddity.recID},
            {jsonKey("text"), jsonText(oddity.text)}});
    }
    return {{jsonKey("version"), report.fileVersion},
            {jsonKey("records"), static_cast<qint64>(report.records)},
            {jsonKey("devices"), devices},
            {jsonKey("special"), special},
            {jsonKey("oddities"), oddities}};
}

} // namespace

ExitStatus runCheck(CommandContext& context) {
    const auto content = readDatafile(context.out, context.arguments.positionals[0]);
    if (!content)
        return ExitStatus::FileFailed;
    const DatafileReport report = inspectDatafile(*content);
    if (context.arguments.has("--json"))
        context.out.printLine(jsonLine(reportObject(report)));
    else
        printReport(context.out, report);
    return report.oddities.empty() ? ExitStatus::Done : ExitStatus::No;
}

} // namespace mirovane
