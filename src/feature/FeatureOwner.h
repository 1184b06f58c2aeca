#pragma once

#include "feature/Question.h"
#include "model/Document.h"
#include "model/records/SpecialRecords.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace mirovane {

/// What only one of the stations on a datafile runs.
enum class Feature { LiveStat, LiveDiscover };

/// Each of them has a record that tells all stations on the datafile which one runs it. Main thread. Nothing
/// here saves.
namespace FeatureOwner {

/// Null in a damaged datafile until somebody claims it.
const CHardware* record(const CMirovaneDoc& document, Feature feature);

/// Without a record: off, and no station's.
OwnerValues values(const CMirovaneDoc& document, Feature feature);

/// Which stations run Live Stat and Live Discover; nothing where it is off. To see whether that changed.
std::array<std::optional<StationIdentity>, 2> stations(const CMirovaneDoc& document);

/// On at a station that is not this one.
bool isElsewhere(const CMirovaneDoc& document, Feature feature);

/// On, and the record names this station.
bool isHere(const CMirovaneDoc& document, Feature feature);

/// What the user is asked before this station takes it over from `owner`.
std::string takeOverText(Feature feature, const std::string& owner);

/// The same where the record names the owner.
Question takeOverQuestion(const CMirovaneDoc& document, Feature feature);

/// Names this station. A datafile that lost its owner record gets one.
void claim(CMirovaneDoc& document, Feature feature);

/// As it was before a claim that nobody heard of.
void restore(CMirovaneDoc& document, Feature feature, const OwnerValues& before);

/// Nobody runs it any more.
void release(CMirovaneDoc& document, Feature feature);

} // namespace FeatureOwner

/// `Modified` of Live Stat's owner record is the owner's sign of life. (Live Discover's is the time of its
/// last discovery.)
namespace LiveStatHeartbeat {

/// An owner that was silent for so many whole hours is replaced by the next station that starts Live Stat by
/// itself.
constexpr std::int64_t takeOverHours = 4;

/// Modified = now.
void signOfLife(CMirovaneDoc& document);

/// Whole hours since the last sign of life, below 0 for one from the future; 0 without an owner record.
std::int64_t silentHours(const CMirovaneDoc& document);

} // namespace LiveStatHeartbeat

/// How long the owner of Live Stat has been silent, as one station sees it. A sign of life from the future
/// was given by a clock that went wrong. It would look fresh for as long as that clock was fast, so its owner
/// has been silent since this station first saw the sign.
class COwnerSilence {
public:
    std::int64_t hours(const CMirovaneDoc& document);

    /// Another document.
    void reset() { sign_.reset(); }

private:
    std::optional<TimeStamp> sign_; ///< from the future
    TimeStamp firstSeen_ = 0;
};

} // namespace mirovane
