#include "feature/FeatureClaim.h"

namespace mirovane {

std::optional<StartRefusal> CFeatureOwnership::takeOver() {
    using Kind = StartRefusal::Kind;
    for (int i = 0; i < saveTries; ++i) {
        if (isElsewhere() && !host_.ask(FeatureOwner::takeOverQuestion(document_, feature_)))
            return StartRefusal{Kind::OwnerElsewhere, {}};
        const OwnerValues before = FeatureOwner::values(document_, feature_);
        FeatureOwner::claim(document_, feature_);
        const SaveResult saved = host_.saveNow(SaveNote::None);
        if (saved == SaveResult::Failed) {
            FeatureOwner::restore(document_, feature_, before);
            return StartRefusal{
                Kind::NotWritable,
                std::string(feature_ == Feature::LiveStat ? "Live Stat" : "Live Discover") +
                    " does not start: the datafile cannot be saved, and no other station would "
                    "learn that it runs here."};
        }
        if (saved == SaveResult::Saved)
            break;
    }
    claimedHere_ = true;
    return std::nullopt;
}

std::optional<StartRefusal> CFeatureClaim::take() {
    if (auto refusal = ownership_.takeOver())
        return refusal;
    ownership_.holders_.insert(this);
    return std::nullopt;
}

std::optional<StartRefusal> CFeatureClaim::join() {
    if (!ownership_.isHere())
        return take();
    if (ownership_.holders_.empty())
        ownership_.claimedHere_ = false;
    ownership_.holders_.insert(this);
    return std::nullopt;
}

bool CFeatureClaim::keep() {
    if (!held())
        return false;
    // Also when the record names nobody: the other station came and went while this one kept running.
    if (ownership_.isHere() || !ownership_.takeOver())
        return true;
    ownership_.holders_.clear();
    return false;
}

void CFeatureClaim::letGo() {
    if (!held())
        return;
    drop();
    for (int i = 0; i < saveTries && ownership_.mayRelease(); ++i) {
        FeatureOwner::release(ownership_.document_, ownership_.feature_);
        if (ownership_.host_.saveNow(SaveNote::None) != SaveResult::Reloaded)
            return;
    }
}

void CFeatureClaim::letGoUnsaved() {
    drop();
    if (ownership_.mayRelease())
        FeatureOwner::release(ownership_.document_, ownership_.feature_);
}

} // namespace mirovane
