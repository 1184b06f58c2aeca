#include "livestat/FeatureOwner.h"

#include <utility>

namespace mirovane {

namespace {

/// Each try loses against a station that saved in the very moment; three in a row do not happen to people.
constexpr int saveTries = 3;

std::int32_t recordType(Feature feature) {
    return feature == Feature::LiveStat ? SpecialType::LiveStatOwnerRecord
                                        : SpecialType::LiveDiscoverOwnerRecord;
}

bool namesThisStation(const CHardware& owner, const StationIdentity& station) {
    return owner.Name == station.computerName && owner.Username == station.userName;
}

} // namespace

namespace FeatureOwner {

const CHardware* record(const CMirovaneDoc& document, Feature feature) {
    return document.findSpecial(recordType(feature));
}

bool isElsewhere(const CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    return owner && owner->State > 0 && !namesThisStation(*owner, document.station());
}

bool isHere(const CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    return owner && owner->State > 0 && namesThisStation(*owner, document.station());
}

std::string takeOverQuestion(const CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    const std::string who = owner ? owner->Name + "\\" + owner->Username : std::string();
    if (feature == Feature::LiveStat)
        return "Live stat is enabled by " + who +
               ". Do you want to continue to enable Live stat? Doing so will prompt the other user to "
               "disable Live stat.";
    return "Live Discover is enabled by " + who +
           ". Do you want to continue to enable Live Discover? Doing so will prompt the other user to "
           "disable Live Discover.";
}

void claim(CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    if (!owner) {
        CHardware fresh;
        fresh.Type = recordType(feature);
        owner = document.append(std::move(fresh));
        if (!owner)
            return; // the log says that the datafile is full
    }
    document.edit(*owner, [&](CHardware& held) {
        held.State = 1;
        held.Name = document.station().computerName;
        held.Username = document.station().userName;
        // An old stamp would make the next station that reloads believe that the owner of Live Stat has been
        // silent for hours.
        if (feature == Feature::LiveStat)
            held.Modified = document.now();
    });
}

void release(CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    if (!owner)
        return;
    document.edit(*owner, [&](CHardware& held) {
        held.State = 0;
        held.Name.clear();
        held.Username.clear();
        if (feature == Feature::LiveStat)
            held.Modified = document.now();
    });
}

bool takeOver(CMirovaneDoc& document, Feature feature, FeatureHost& host) {
    for (int i = 0; i < saveTries; ++i) {
        if (isElsewhere(document, feature) && !host.askUser(takeOverQuestion(document, feature)))
            return false;
        claim(document, feature);
        if (host.saveDatafile({}) != SaveResult::Reloaded)
            break;
    }
    return true;
}

void giveUp(CMirovaneDoc& document, Feature feature, FeatureHost& host) {
    for (int i = 0; i < saveTries && !isElsewhere(document, feature); ++i) {
        release(document, feature);
        if (host.saveDatafile({}) != SaveResult::Reloaded)
            return;
    }
}

} // namespace FeatureOwner

namespace LiveStatHeartbeat {

void signOfLife(CMirovaneDoc& document) {
    if (const CHardware* owner = FeatureOwner::record(document, Feature::LiveStat))
        document.editInBackground(*owner, [&](CHardware& held) { held.Modified = document.now(); });
}

std::int64_t silentHours(const CMirovaneDoc& document) {
    constexpr std::int64_t secondsPerHour = 3600;
    const CHardware* owner = FeatureOwner::record(document, Feature::LiveStat);
    return owner ? (std::int64_t{document.now()} - owner->Modified) / secondsPerHour : 0;
}

} // namespace LiveStatHeartbeat

} // namespace mirovane
