#include "livestat/LiveStatOwner.h"

namespace mirovane::LiveStatOwner {

namespace {

const CHardware* ownerRecord(const CMirovaneDoc& document) {
    return document.findSpecial(SpecialType::LiveStatOwnerRecord);
}

bool namesThisStation(const CHardware& owner, const StationIdentity& station) {
    return owner.Name == station.computerName && owner.Username == station.userName;
}

} // namespace

bool isElsewhere(const CMirovaneDoc& document) {
    const CHardware* owner = ownerRecord(document);
    return owner && owner->State > 0 && !namesThisStation(*owner, document.station());
}

bool isHere(const CMirovaneDoc& document) {
    const CHardware* owner = ownerRecord(document);
    return owner && owner->State > 0 && namesThisStation(*owner, document.station());
}

std::string takeOverQuestion(const CMirovaneDoc& document) {
    const CHardware* owner = ownerRecord(document);
    return "Live stat is enabled by " + owner->Name + "\\" + owner->Username +
           ". Do you want to continue to enable Live stat? Doing so will prompt the other user to disable "
           "Live "
           "stat.";
}

void claim(CMirovaneDoc& document) {
    const CHardware* owner = ownerRecord(document);
    if (!owner) {
        CHardware fresh;
        fresh.Type = SpecialType::LiveStatOwnerRecord;
        owner = document.append(std::move(fresh));
        if (!owner)
            return; // the log says that the datafile is full
    }
    document.edit(*owner, [&](CHardware& record) {
        record.State = 1;
        record.Name = document.station().computerName;
        record.Username = document.station().userName;
        // An old stamp would make the next station that reloads believe that the owner has been silent for
        // hours.
        record.Modified = document.now();
    });
}

void release(CMirovaneDoc& document) {
    if (const CHardware* owner = ownerRecord(document)) {
        document.edit(*owner, [&](CHardware& record) {
            record.State = 0;
            record.Name.clear();
            record.Username.clear();
            record.Modified = document.now();
        });
    }
}

void signOfLife(CMirovaneDoc& document) {
    if (const CHardware* owner = ownerRecord(document))
        document.edit(*owner, [&](CHardware& record) { record.Modified = document.now(); });
}

std::int64_t silentHours(const CMirovaneDoc& document) {
    constexpr std::int64_t secondsPerHour = 3600;
    const CHardware* owner = ownerRecord(document);
    return owner ? (std::int64_t{document.now()} - owner->Modified) / secondsPerHour : 0;
}

} // namespace mirovane::LiveStatOwner
