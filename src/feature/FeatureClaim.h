#pragma once

#include "feature/FeatureHost.h"
#include "feature/FeatureOwner.h"
#include "feature/FeatureServices.h"
#include "feature/StartRefusal.h"

#include <optional>
#include <set>

namespace mirovane {

class CFeatureClaim;

/// A feature's owner record as this station holds it: once, for however many of its parts run the feature.
/// Live Discover and Discover Now both hold Live Discover's record; it is released when the last one lets
/// go. The record names a computer and a user: two programs of one user, as a window and a service, count as
/// two stations all the same, because this computer tells them apart. Main thread; outlives its claims.
class CFeatureOwnership {
public:
    CFeatureOwnership(Feature feature, const FeatureServices& services, FeatureHost& host)
        : feature_(feature),
          document_(services.document),
          log_(services.log),
          programs_(services.programs),
          host_(host) {}
    CFeatureOwnership(const CFeatureOwnership&) = delete;
    CFeatureOwnership& operator=(const CFeatureOwnership&) = delete;

    Feature feature() const { return feature_; }
    bool isHere() const { return FeatureOwner::isHere(document_, feature_) && !isOtherProgram(); }
    bool isElsewhere() const { return FeatureOwner::isElsewhere(document_, feature_) || isOtherProgram(); }

private:
    friend class CFeatureClaim;

    std::optional<StartRefusal> takeOver();
    std::optional<StartRefusal> refuseUnsaved(const OwnerValues& before);
    Question takeOverQuestion() const;
    bool isOtherProgram() const;
    void takeProgram();
    void letProgramGo();
    bool mayRelease() const { return holders_.empty() && claimedHere_ && !isElsewhere(); }

    const Feature feature_;
    CMirovaneDoc& document_;
    CMessageLog& log_;
    CProgramClaims* const programs_;
    FeatureHost& host_;
    std::set<const CFeatureClaim*> holders_;
    bool claimedHere_ = false; ///< by a holder; otherwise another program of this user did, and it stays
};

/// The hold of one of the parts, from its start to its end.
class CFeatureClaim {
public:
    explicit CFeatureClaim(CFeatureOwnership& ownership) : ownership_(ownership) {}
    ~CFeatureClaim() { drop(); }
    CFeatureClaim(const CFeatureClaim&) = delete;
    CFeatureClaim& operator=(const CFeatureClaim&) = delete;

    bool held() const { return ownership_.holders_.contains(this); }
    const CFeatureOwnership& ownership() const { return ownership_; }

    /// Makes this station the owner and saves, asking where another one is. Refused when the user says No,
    /// and when the datafile cannot be saved: the record is then as it was, because no other station would
    /// learn of the claim.
    std::optional<StartRefusal> take();

    /// As take(), but a record that names this station already stays as it is. Where no other part of this
    /// station holds it, another program of this user does, and it stays when this claim ends, too.
    std::optional<StartRefusal> join();

    /// The records were read again. Takes the record back when it does not name this station any more, asking
    /// where it names another one. False when that is refused: then no part of this station holds it.
    bool keep();

    /// Releases the record and saves if this was the last hold on it. A record that names another station by
    /// now is that one's.
    void letGo();

    /// The same for who saves himself: releases in memory only. To be repeated where that save met another
    /// station's and brought the old record back.
    void letGoUnsaved();

    /// Lets go and leaves the record as it is.
    void drop();

private:
    CFeatureOwnership& ownership_;
};

} // namespace mirovane
