#include "feature/FeatureClaim.h"

namespace mirovane {

bool CFeatureOwnership::takeOver() {
    for (int i = 0; i < saveTries; ++i) {
        if (isElsewhere() && !host_.ask(FeatureOwner::takeOverQuestion(document_, feature_)))
            return false;
        FeatureOwner::claim(document_, feature_);
        if (host_.saveNow(SaveNote::None) != SaveResult::Reloaded)
            break;
    }
    claimedHere_ = true;
    return true;
}

bool CFeatureClaim::take() {
    if (!ownership_.takeOver())
        return false;
    ownership_.holders_.insert(this);
    return true;
}

bool CFeatureClaim::join() {
    if (!ownership_.isHere())
        return take();
    if (ownership_.holders_.empty())
        ownership_.claimedHere_ = false;
    ownership_.holders_.insert(this);
    return true;
}

bool CFeatureClaim::keep() {
    if (!held())
        return false;
    // Also when the record names nobody: the other station came and went while this one kept running.
    if (ownership_.isHere() || ownership_.takeOver())
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
