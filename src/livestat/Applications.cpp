#include "livestat/Applications.h"

namespace mirovane {

ApplicationValues applicationValues(const CHardware& record) {
    return {record.State == 1, record.Name, record.ToJack};
}

std::vector<const CHardware*> applicationRecords(const CMirovaneDoc& document) {
    std::vector<const CHardware*> entries;
    for (std::size_t i = 0; i < document.size(); ++i) {
        if (document.at(i).Type == SpecialType::ApplicationRecord)
            entries.push_back(&document.at(i));
    }
    return entries;
}

std::vector<ApplicationValues> applicationsOnMenu(const CMirovaneDoc& document) {
    std::vector<ApplicationValues> entries;
    for (const CHardware* record : applicationRecords(document)) {
        if (ApplicationValues values = applicationValues(*record); values.onMenu)
            entries.push_back(std::move(values));
    }
    return entries;
}

const CHardware* addApplication(CMirovaneDoc& document) {
    CHardware entry;
    entry.Type = SpecialType::ApplicationRecord;
    return document.append(std::move(entry));
}

void changeApplication(CMirovaneDoc& document, const CHardware& record, const ApplicationValues& values) {
    document.edit(record, [&values](CHardware& held) {
        held.State = values.onMenu ? 1 : 0;
        held.Name = values.name;
        held.ToJack = values.command;
    });
}

std::vector<const CHardware*> applicationTargets(const CMirovaneDoc& document) {
    std::vector<const CHardware*> targets;
    for (std::size_t i = 0; i < document.size(); ++i) {
        if (document.at(i).onFloor() && document.at(i).Selected != 0)
            targets.push_back(&document.at(i));
    }
    return targets;
}

std::vector<CHardware> applicationDevices(const CMirovaneDoc& document) {
    std::vector<CHardware> devices;
    for (const CHardware* target : applicationTargets(document))
        devices.push_back(*target);
    return devices;
}

} // namespace mirovane
