#include "feature/FeatureClaim.h"

#include "platform/files/FileErrors.h"

#include <cerrno>

namespace mirovane {

namespace {

std::string nameOf(Feature feature) {
    return feature == Feature::LiveStat ? "Live Stat" : "Live Discover";
}

/// In the name of a file.
std::string claimOf(Feature feature) {
    return feature == Feature::LiveStat ? "livestat" : "livediscover";
}

} // namespace

/// The save that follows makes the other program read the datafile again: then it looks whether it still is
/// the one.
std::optional<StartRefusal> CFeatureOwnership::takeOver() {
    for (int i = 0; i < saveTries; ++i) {
        if (isElsewhere() && !host_.ask(takeOverQuestion()))
            return StartRefusal{StartRefusal::Kind::OwnerElsewhere, {}};
        const OwnerValues before = FeatureOwner::values(document_, feature_);
        FeatureOwner::claim(document_, feature_);
        takeProgram();
        const SaveResult saved = host_.saveNow(SaveNote::None);
        if (saved == SaveResult::Failed)
            return refuseUnsaved(before);
        if (saved == SaveResult::Saved)
            break;
    }
    claimedHere_ = true;
    return std::nullopt;
}

std::optional<StartRefusal> CFeatureOwnership::refuseUnsaved(const OwnerValues& before) {
    FeatureOwner::restore(document_, feature_, before);
    letProgramGo();
    return StartRefusal{StartRefusal::Kind::NotWritable,
                        nameOf(feature_) +
                            " does not start: the datafile cannot be saved, and no other station "
                            "would learn that it runs here."};
}

Question CFeatureOwnership::takeOverQuestion() const {
    Question question = FeatureOwner::takeOverQuestion(document_, feature_);
    if (!FeatureOwner::isElsewhere(document_, feature_))
        question.text = FeatureOwner::takeOverText(feature_, "another program of yours on this computer");
    return question;
}

// ---- other programs of this user

bool CFeatureOwnership::isOtherProgram() const {
    return programs_ && programs_->elsewhere(claimOf(feature_)) &&
           FeatureOwner::values(document_, feature_).on;
}

void CFeatureOwnership::takeProgram() {
    if (programs_ && !programs_->take(claimOf(feature_)))
        log_.LogMessage(fileError("cannot tell other programs of this user that " + nameOf(feature_) +
                                      " runs here: cannot write in",
                                  programs_->folder(), errno)
                            .sentence,
                        true);
}

void CFeatureOwnership::letProgramGo() {
    if (programs_)
        programs_->letGo(claimOf(feature_));
}

// ---- claims

std::optional<StartRefusal> CFeatureClaim::take() {
    if (auto refusal = ownership_.takeOver())
        return refusal;
    ownership_.holders_.insert(this);
    return std::nullopt;
}

std::optional<StartRefusal> CFeatureClaim::join() {
    if (!ownership_.isHere())
        return take();
    if (ownership_.holders_.empty()) {
        ownership_.claimedHere_ = false;
        ownership_.takeProgram();
    }
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
    ownership_.letProgramGo();
    return false;
}

void CFeatureClaim::drop() {
    if (ownership_.holders_.erase(this) > 0 && ownership_.holders_.empty())
        ownership_.letProgramGo();
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
