#include "applications/Applications.h"

namespace mirovane {

std::vector<const CHardware*> applicationRecords(const CMirovaneDoc& document) {
    std::vector<const CHardware*> entries;
    for (std::size_t i = 0; i < document.size(); ++i)
        if (document.at(i).Type == SpecialType::ApplicationRecord)
            entries.push_back(&document.at(i));
    return entries;
}

std::vector<ApplicationValues> applicationsOnMenu(const CMirovaneDoc& document) {
    std::vector<ApplicationValues> entries;
    for (const CHardware* record : applicationRecords(document))
        if (ApplicationValues values = applicationFromRecord(*record); values.onMenu)
            entries.push_back(std::move(values));
    return entries;
}

const CHardware* addApplication(CMirovaneDoc& document) {
    CHardware entry;
    entry.Type = SpecialType::ApplicationRecord;
    return document.append(std::move(entry));
}

void changeApplication(CMirovaneDoc& document, const CHardware& record, const ApplicationValues& values) {
    document.edit(
        record, [&values](CHardware& held) { toRecord(values, held); });
}

/// The records stay where they are in the list and trade what they hold.
void moveApplication(CMirovaneDoc& document, std::size_t from, std::size_t to) {
    const auto records = applicationRecords(document);
    if (from >= records.size() || to >= records.size() || from == to)
        return;
    const ApplicationValues moved = applicationFromRecord(*records[from]);
    const auto step = [from, to](std::size_t place) {
        return from < to ? place + 1 : place - 1;
    };
    for (std::size_t place = from; place != to; place = step(place))
        changeApplication(document, *records[place], applicationFromRecord(*records[step(place)]));
    changeApplication(document, *records[to], moved);
}

std::vector<const CHardware*> applicationTargets(const CSelection& selection) {
    return selection.members(CSelection::Scope::Floor);
}

std::vector<CHardware> applicationDevices(const CSelection& selection) {
    std::vector<CHardware> devices;
    for (const CHardware* target : applicationTargets(selection))
        devices.push_back(*target);
    return devices;
}

} // namespace mirovane
