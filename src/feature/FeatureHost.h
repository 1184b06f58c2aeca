#pragma once

#include "feature/Question.h"
#include "model/SaveReport.h"

#include <cstdint>
#include <string>

namespace mirovane {

enum class SaveResult {
    Saved,
    Failed,   ///< reported in the log; what is in memory stays
    Reloaded, ///< another station had saved meanwhile who runs what, and that stands: look again
};

/// How often a save is tried that meets another station's. Each try loses against a station that saved in the
/// very moment; three in a row do not happen to people.
constexpr int saveTries = 3;

/// What Live Stat and Live Discover ask of the station that they run in. Main thread.
class FeatureHost {
public:
    virtual ~FeatureHost() = default;

    virtual bool ask(const Question& question) = 0;
    virtual void failUser(const std::string& text) = 0;

    /// True while a reload, an update or a delete is under way or a question is open: nothing is started, no
    /// record is changed.
    virtual bool holdsStill() const = 0;

    /// Waits for it.
    virtual SaveResult saveNow(SaveNote note) = 0;

    /// For what no other station waits for: a share that hangs is not waited for either.
    virtual void saveSoon(SaveNote note) { saveNow(note); }

    /// Records were changed that need no save of their own: the next periodic one takes them along.
    virtual void changesPending() = 0;

    /// Something went on or off, or the status text changed.
    virtual void indicatorsChanged() = 0;
};

// One station is both hosts at once: virtual, so that it answers each of the common questions once.

class LiveStatHost : public virtual FeatureHost {
public:
    /// Records changed that are seen. At most once a run.
    virtual void redraw() = 0;

    /// Tracking is on and this device's check begins: bring it into view.
    virtual void track(std::int32_t recID) = 0;
};

class LiveDiscoverHost : public virtual FeatureHost {
public:
    /// A device was added: save, export and show it.
    virtual void deviceDiscovered() = 0;
};

} // namespace mirovane
