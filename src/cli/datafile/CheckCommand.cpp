#include "cli/base/Datafiles.h"
#include "cli/base/RecordJson.h"
#include "cli/datafile/DatafileCheck.h"
#include "cli/datafile/DatafileCommands.h"
#include "cli/datafile/DatafileRepair.h"
#include "feature/FeatureOwner.h"

#include <QJsonArray>

namespace mirovane {

namespace {

void printCountLine(COutput& out, std::string_view name, const DeviceCount& count) {
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

constexpr std::int64_t minutesPerHour = 60;

/// Negative when the record was written by a clock that is ahead of this one.
std::int64_t minutesSince(TimeStamp stamp, TimeStamp now) {
    return (std::int64_t{now} - stamp) / 60;
}

std::string spanText(std::int64_t minutes) {
    const std::int64_t span = minutes < 0 ? -minutes : minutes;
    return std::to_string(span / minutesPerHour) + " h " + std::to_string(span % minutesPerHour) + " min" +
           (minutes < 0 ? " ahead of this computer's clock" : " ago");
}

/// Also where nobody runs it: a station looks at the hours alone.
bool takeOverDue(const DatafileReport& report, TimeStamp now) {
    return report.liveStat.exists && !report.devices.empty() &&
           minutesSince(report.liveStat.Modified, now) >= LiveStatHeartbeat::takeOverHours * minutesPerHour;
}

std::string ownerText(const OwnerState& owner, std::string_view stamped, TimeStamp now) {
    if (!owner.exists)
        return "no owner record";
    const std::string where =
        owner.State > 0 ? "on at " + printable(owner.Name) + "\\" + printable(owner.Username) : "off";
    return where + ", " + std::string(stamped) + " " + spanText(minutesSince(owner.Modified, now));
}

void printOwners(COutput& out, const DatafileReport& report, TimeStamp now) {
    std::string liveStat = ownerText(report.liveStat, "last sign of life", now);
    if (takeOverDue(report, now))
        liveStat += "; the next station with \"Auto start Live Stat\" takes it over";
    out.printLine("owners:");
    out.printLine("  Live Stat: " + liveStat);
    out.printLine("  Live Discover: " + ownerText(report.liveDiscover, "last changed", now));
}

QJsonValue ownerObject(const OwnerState& owner, TimeStamp now) {
    if (!owner.exists)
        return QJsonValue();
    return QJsonObject{{jsonKey("State"), owner.State},
                       {jsonKey("Name"), jsonText(owner.Name)},
                       {jsonKey("Username"), jsonText(owner.Username)},
                       {jsonKey("Modified"), owner.Modified},
                       {jsonKey("ageMinutes"), static_cast<qint64>(minutesSince(owner.Modified, now))}};
}

QJsonObject ownersObject(const DatafileReport& report, TimeStamp now) {
    return {{jsonKey("LiveStat"), ownerObject(report.liveStat, now)},
            {jsonKey("LiveDiscover"), ownerObject(report.liveDiscover, now)},
            {jsonKey("takeOverDue"), takeOverDue(report, now)}};
}

void printReport(COutput& out, const DatafileReport& report, TimeStamp now) {
    out.printLine("version: " + std::to_string(report.fileVersion));
    out.printLine("records: " + std::to_string(report.records));
    out.printLine("devices: total [floor map] [Discovered/Misc]");
    for (const auto& [type, count] : report.devices)
        printCountLine(out, deviceKind(type), count);
    out.printLine("special records:");
    for (auto entry = report.special.rbegin(); entry != report.special.rend(); ++entry)
        out.printLine("  " + kindOfSpecial(entry->first) + ": " + std::to_string(entry->second));
    printOwners(out, report, now);
    out.printLine("oddities: " + std::to_string(report.oddities.size()));
    for (const Oddity& oddity : report.oddities) {
        std::string where = "  ";
        if (oddity.record != Oddity::wholeFile)
            where += "record " + std::to_string(oddity.record) +
                     (oddity.recID != 0 ? " (RecID " + std::to_string(oddity.recID) + ")" : "") + ": ";
        out.printLine(where + printable(oddity.text));
    }
}

QJsonObject reportObject(const DatafileReport& report, TimeStamp now) {
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
            {jsonKey("owners"), ownersObject(report, now)},
            {jsonKey("oddities"), oddities}};
}

std::string renumberingText(const TwinRenumbering& twin) {
    return "\"" + printable(twin.name) + "\": RecID " + std::to_string(twin.from) + " is now " +
           std::to_string(twin.to);
}

void printRepair(COutput& out, const DatafileRepair& repair) {
    if (repair.nothingDone())
        return out.printLine("repaired: nothing, there is nothing that can be mended without loss");
    out.printLine("repaired: " + std::to_string(repair.renumbered.size() + (repair.strayBytes > 0 ? 1 : 0)));
    if (repair.strayBytes > 0)
        out.printLine("  " + std::to_string(repair.strayBytes) + " byte(s) after the last record left out");
    for (const TwinRenumbering& twin : repair.renumbered)
        out.printLine("  " + renumberingText(twin));
    out.printLine("  the file as it was: " + printable(repair.copy));
}

QJsonObject repairObject(const DatafileRepair& repair) {
    QJsonArray renumbered;
    for (const TwinRenumbering& twin : repair.renumbered)
        renumbered.append(QJsonObject{
            {jsonKey("Name"), jsonText(twin.name)}, {jsonKey("From"), twin.from}, {jsonKey("To"), twin.to}});
    return {{jsonKey("renumbered"), renumbered},
            {jsonKey("strayBytes"), static_cast<qint64>(repair.strayBytes)},
            {jsonKey("copy"), jsonText(repair.copy)}};
}

constexpr std::array checkOptions{
    OptionDefinition{"--repair", 0, "", "mend what can be mended without loss, and say what was done"},
    jsonOption,
};

constexpr std::string_view checkDetails =
    "Tells which station runs Live Stat and Live Discover, and how old its last sign of life is.\n"
    "Exit status 1 when anything is odd, 3 when the file cannot be read at all.\n"
    "--repair: of devices with the same RecID the first one keeps it, each other one gets the next free "
    "one, and bytes after the last record are left out.\n"
    "The file as it was is kept as FILE.before-repair, or FILE.before-repair-2 and so on where that exists.\n"
    "Then FILE is checked again. Everything else that is odd is reported only.\n";

ExitStatus runCheck(CommandContext& context) {
    const std::string& path = context.arguments.positionals[0];
    std::optional<DatafileRepair> repair;
    if (context.arguments.has("--repair")) {
        repair = repairDatafile(context.out, path);
        if (repair->status != ExitStatus::Done)
            return repair->status;
    }
    const auto content = readDatafile(context.out, path);
    if (!content)
        return ExitStatus::FileFailed;
    const DatafileReport report = inspectDatafile(*content);
    const TimeStamp now = secondsNow();
    if (context.arguments.has("--json")) {
        QJsonObject object = reportObject(report, now);
        if (repair)
            object.insert(jsonKey("repaired"), repairObject(*repair));
        context.out.printLine(jsonLine(object));
    } else {
        if (repair)
            printRepair(context.out, *repair);
        printReport(context.out, report, now);
    }
    return report.oddities.empty() ? ExitStatus::Done : ExitStatus::No;
}

} // namespace

constinit const Command checkCommand{
    .name = "check",
    .help = "read a datafile, report every oddity, and mend it",
    .usage = "FILE [--repair] [--json]",
    .least = 1,
    .most = 1,
    .options = checkOptions,
    .details = checkDetails,
    .run = runCheck,
};

} // namespace mirovane
