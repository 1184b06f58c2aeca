#include "cli/datafile/DatafileCheck.h"

#include "model/records/Criteria.h"
#include "model/records/Dates.h"
#include "model/records/FieldNames.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <unordered_map>

namespace mirovane {

namespace {

constexpr std::array<std::string_view, 7> specialNames{
    "",
    "FloorMapRecord",
    "ApplicationRecord",
    "LiveStatOwnerRecord",
    "DiscoverRangeRecord",
    "LiveDiscoverOwnerRecord",
    "VersionRecord",
};

bool isNamedSpecial(std::int32_t type) {
    return type < 0 && type >= SpecialType::VersionRecord;
}

/// Neither UTF-8 nor Windows-1252, which leaves five bytes undefined.
bool undecodable(std::string_view bytes) {
    constexpr std::string_view undefined = "\x81\x8D\x8F\x90\x9D";
    return bytes.find_first_of(undefined) != std::string_view::npos && !isValidUtf8(bytes);
}

std::string criteriaName(std::int32_t type) {
    return std::string(typeName(criteriaTypeOf(type))) + " " + std::to_string(criteriaRowOf(type));
}

/// "0 to 3, 7" for 0, 1, 2, 3, 7.
std::string rowList(const std::vector<int>& rows) {
    std::string text;
    for (std::size_t first = 0, last = 0; first < rows.size(); first = last + 1) {
        last = first;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1)
            ++last;
        text += (text.empty() ? "" : ", ") + std::to_string(rows[first]);
        if (last > first)
            text += " to " + std::to_string(rows[last]);
    }
    return text;
}

class CInspector {
public:
    explicit CInspector(const Datafile::Content& content) : content_(content) {}

    DatafileReport run() {
        report_.fileVersion = content_.fileVersion;
        report_.records = content_.records.size();
        for (place_ = 0; place_ < content_.records.size(); ++place_)
            inspect(*content_.records[place_]);
        place_ = Oddity::wholeFile;
        if (content_.strayBytes > 0)
            odd(std::to_string(content_.strayBytes) + " byte(s) follow the last record (--repair mends it)");
        inspectMissing();
        return std::move(report_);
    }

private:
    void odd(std::string text, std::int32_t recID = 0) {
        report_.oddities.push_back({place_, recID, std::move(text)});
    }

    void inspect(const CHardware& record) {
        inspectTexts(record);
        if (record.isDevice())
            inspectDevice(record);
        else if (isCriteriaRecordType(record.Type))
            inspectCriteria(record);
        else if (isNamedSpecial(record.Type))
            inspectSpecial(record);
        else
            odd("the type " + std::to_string(record.Type) + " is unknown");
    }

    void inspectTexts(const CHardware& record) {
        for (const RecordField& field : recordFields()) {
            const auto* member = std::get_if<std::string CHardware::*>(&field.member);
            if (member && undecodable(record.**member))
                odd(std::string(field.name) + " holds text that is neither UTF-8 nor Windows-1252",
                    record.isDevice() ? record.RecID : 0);
        }
    }

    void inspectDevice(const CHardware& device) {
        const bool known = !typeName(device.Type).empty();
        DeviceCount& count = report_.devices[known ? floorCode(device.Type) : device.Type];
        ++(device.inDiscovered() ? count.discovered : count.onFloor);
        if (!known)
            odd("the device type " + std::to_string(device.Type) + " is unknown", device.RecID);
        if (device.RecID <= 0)
            odd("the record ID " + std::to_string(device.RecID) + " is not above 0", device.RecID);
        const auto [first, isNew] = placeOfRecID_.emplace(device.RecID, place_);
        if (!isNew)
            odd("record " + std::to_string(first->second) + " has the same record ID " +
                    std::to_string(device.RecID) + " (--repair mends it)",
                device.RecID);
        inspectNumbers(device);
    }

    void inspectNumbers(const CHardware& device) {
        inspectRange(device, "Priority", device.Priority, 1, 5);
        inspectRange(device, "State", device.State, DeviceState::Def, DeviceState::Off);
        for (const RecordField& field : recordFields()) {
            if (field.kind == FieldKind::Flag)
                inspectRange(device, field.name, device.*std::get<std::int32_t CHardware::*>(field.member), 0,
                             1);
        }
        if (device.ReminderDate.status < DateTime::valid || device.ReminderDate.status > DateTime::null ||
            !std::isfinite(device.ReminderDate.value))
            odd("ReminderDate is not a date", device.RecID);
        else if (device.ReminderOn == 1 && !isCalendarDate(device.ReminderDate))
            odd("a reminder is set without a date", device.RecID);
    }

    void inspectRange(const CHardware& device, std::string_view field, std::int32_t value, std::int32_t least,
                      std::int32_t most) {
        if (value < least || value > most)
            odd(std::string(field) + " is " + std::to_string(value) + ", outside " + std::to_string(least) +
                    " to " + std::to_string(most),
                device.RecID);
    }

    void inspectSpecial(const CHardware& record) {
        const bool mayRepeat =
            record.Type == SpecialType::ApplicationRecord || record.Type == SpecialType::DiscoverRangeRecord;
        if (++report_.special[record.Type] > 1 && !mayRepeat)
            odd("a second " + recordKind(record.Type));
        if (record.Type == SpecialType::VersionRecord)
            inspectVersion(record);
        if (record.Type == SpecialType::LiveStatOwnerRecord)
            inspectOwner(record, report_.liveStat);
        if (record.Type == SpecialType::LiveDiscoverOwnerRecord)
            inspectOwner(record, report_.liveDiscover);
        inspectSpecialRecID(record);
    }

    /// Every station goes by the first one.
    static void inspectOwner(const CHardware& record, OwnerState& owner) {
        if (!owner.exists)
            owner = {true, record.State, record.Name, record.Username, record.Modified};
    }

    void inspectVersion(const CHardware& record) {
        if (report_.created == 0)
            report_.created = record.Modified;
        if (place_ != 0)
            odd("the VersionRecord is not the first record");
        if (record.State != content_.fileVersion)
            odd("the VersionRecord says " + std::to_string(record.State) + ", the layout is that of " +
                std::to_string(content_.fileVersion));
    }

    void inspectSpecialRecID(const CHardware& record) {
        if (record.RecID != 0)
            odd("the " + recordKind(record.Type) + " has the record ID " + std::to_string(record.RecID));
    }

    void inspectCriteria(const CHardware& record) {
        ++report_.special[DatafileReport::criteriaType];
        if (!criteria_.insert(record.Type).second)
            odd("a second " + recordKind(record.Type));
        const CriteriaRow row = criteriaFromRecord(record);
        const auto actions = actionsForRow(criteriaTypeOf(record.Type), criteriaRowOf(record.Type));
        if (!row.Command.empty() && std::find(actions.begin(), actions.end(), row.Command) == actions.end())
            odd(recordKind(record.Type) + " holds the action \"" + row.Command +
                "\", which it does not offer");
        inspectSpecialRecID(record);
    }

    void inspectMissing() {
        for (const std::int32_t type : {SpecialType::VersionRecord, SpecialType::LiveStatOwnerRecord,
                                        SpecialType::LiveDiscoverOwnerRecord})
            if (!report_.special.contains(type))
                odd("there is no " + recordKind(type));
        for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
            inspectMissingCriteria(type);
    }

    /// A datafile from before the To Do row has none of that row; opening it adds them.
    void inspectMissingCriteria(std::int32_t type) {
        constexpr int toDoRow = criteriaRowCount - 1;
        const bool hasToDoRows = criteria_.contains(criteriaRecordType(DeviceType::Jack, toDoRow));
        std::vector<int> missing;
        for (int row = 0; row < criteriaRowCount; ++row) {
            const bool expected = row != toDoRow || hasToDoRows;
            if (expected && !criteria_.contains(criteriaRecordType(type, row)))
                missing.push_back(row);
        }
        if (!missing.empty())
            odd("criteria rows " + rowList(missing) + " of " + std::string(typeName(type)) + " are missing");
    }

    const Datafile::Content& content_;
    DatafileReport report_;
    std::size_t place_ = 0;
    std::unordered_map<std::int32_t, std::size_t> placeOfRecID_;
    std::set<std::int32_t> criteria_;
};

} // namespace

std::string recordKind(std::int32_t type) {
    if (const std::string_view name = typeName(type); !name.empty())
        return std::string(name);
    if (isNamedSpecial(type))
        return std::string(specialNames[static_cast<std::size_t>(-type)]);
    if (isCriteriaRecordType(type))
        return "criteria row " + criteriaName(type);
    return "type " + std::to_string(type);
}

DatafileReport inspectDatafile(const Datafile::Content& content) {
    return CInspector(content).run();
}

} // namespace mirovane
