#include "feature/FeatureOwner.h"

#include <functional>
#include <utility>

namespace mirovane {

namespace {

std::int32_t recordType(Feature feature) {
    return feature == Feature::LiveStat ? SpecialType::LiveStatOwnerRecord
                                        : SpecialType::LiveDiscoverOwnerRecord;
}

void edit(CMirovaneDoc& document, const CHardware& owner, const std::function<void(OwnerValues&)>& change) {
    document.edit(
        owner,
        [&change](CHardware& held) {
            OwnerValues values = ownerFromRecord(held);
            change(values);
            toRecord(values, held);
        });
}

} // namespace

namespace FeatureOwner {

const CHardware* record(const CMirovaneDoc& document, Feature feature) {
    return document.findSpecial(recordType(feature));
}

OwnerValues values(const CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    return owner ? ownerFromRecord(*owner) : OwnerValues{};
}

std::array<std::optional<StationIdentity>, 2> stations(const CMirovaneDoc& document) {
    const auto stationOf = [&document](Feature feature) {
        const OwnerValues owner = values(document, feature);
        return owner.on ? std::optional(owner.station) : std::nullopt;
    };
    return {stationOf(Feature::LiveStat), stationOf(Feature::LiveDiscover)};
}

bool isElsewhere(const CMirovaneDoc& document, Feature feature) {
    const OwnerValues owner = values(document, feature);
    return owner.on && owner.station != document.station();
}

bool isHere(const CMirovaneDoc& document, Feature feature) {
    const OwnerValues owner = values(document, feature);
    return owner.on && owner.station == document.station();
}

std::string takeOverText(Feature feature, const std::string& owner) {
    const std::string name = feature == Feature::LiveStat ? "Live stat" : "Live Discover";
    return name + " is enabled by " + owner + ". Do you want to continue to enable " + name +
           "? Doing so will prompt the other user to disable " + name + ".";
}

Question takeOverQuestion(const CMirovaneDoc& document, Feature feature) {
    const StationIdentity owner = values(document, feature).station;
    return {feature == Feature::LiveStat ? Question::Kind::TakeOverLiveStat
                                         : Question::Kind::TakeOverLiveDiscover,
            takeOverText(feature, owner.computerName + "\\" + owner.userName)};
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
    edit(document, *owner, [&](OwnerValues& held) {
        held.on = true;
        held.station = document.station();
        // An old stamp would make the next station that reloads believe that the owner of Live Stat has been
        // silent for hours.
        if (feature == Feature::LiveStat)
            held.modified = document.now();
    });
}

void restore(CMirovaneDoc& document, Feature feature, const OwnerValues& before) {
    if (const CHardware* owner = record(document, feature))
        edit(
            document, *owner, [&before](OwnerValues& held) { held = before; });
}

void release(CMirovaneDoc& document, Feature feature) {
    const CHardware* owner = record(document, feature);
    if (!owner)
        return;
    edit(document, *owner, [&](OwnerValues& held) {
        held.on = false;
        held.station = {};
        if (feature == Feature::LiveStat)
            held.modified = document.now();
    });
}

} // namespace FeatureOwner

namespace LiveStatHeartbeat {

void signOfLife(CMirovaneDoc& document) {
    if (const CHardware* owner = FeatureOwner::record(document, Feature::LiveStat))
        document.editInBackground(
            *owner, [&](CHardware& held) { held.Modified = document.now(); });
}

std::int64_t silentHours(const CMirovaneDoc& document) {
    constexpr std::int64_t secondsPerHour = 3600;
    const CHardware* owner = FeatureOwner::record(document, Feature::LiveStat);
    return owner ? (std::int64_t{document.now()} - owner->Modified) / secondsPerHour : 0;
}

} // namespace LiveStatHeartbeat

std::int64_t COwnerSilence::hours(const CMirovaneDoc& document) {
    constexpr std::int64_t secondsPerHour = 3600;
    const CHardware* owner = FeatureOwner::record(document, Feature::LiveStat);
    if (!owner || owner->Modified <= document.now()) {
        sign_.reset();
        return LiveStatHeartbeat::silentHours(document);
    }
    if (sign_ != owner->Modified) {
        sign_ = owner->Modified;
        firstSeen_ = document.now();
    }
    return (std::int64_t{document.now()} - firstSeen_) / secondsPerHour;
}

} // namespace mirovane
