#pragma once

#include "model/Selection.h"
#include "model/datafile/DatafileLink.h"
#include "station/DatafileWatch.h"
#include "station/FeatureAnswers.h"
#include "station/Features.h"
#include "station/KeptState.h"
#include "station/Pauses.h"
#include "station/StationNews.h"
#include "station/StationServices.h"
#include "station/UserEdits.h"
#include "station/WatchAnswers.h"
#include "station/export/ListExport.h"
#include "station/reminders/Reminders.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace mirovane {

/// One station on one datafile: a facade over the document, its datafile and the watch over it, the user's
/// edits, what runs in the background, reminders and the export. The desktop program and the headless station
/// are both thin shells over it. Main thread only.
class CStation final : private DocumentObserver {
public:
    explicit CStation(StationServices services);
    ~CStation() override;
    CStation(const CStation&) = delete;
    CStation& operator=(const CStation&) = delete;

    void addObserver(StationObserver& observer) { news_.add(observer); }
    void removeObserver(StationObserver& observer) { news_.remove(observer); }

    const CMirovaneDoc& document() const { return document_; }
    const CDatafileLink& datafile() const { return link_; }
    const CDatafileWatch& watch() const { return watch_; }
    const CReminders& reminders() const { return reminders_; }
    const StepProbes& probes() const { return services_.probes; }

    /// Live Stat, Live Discover and Discover Now.
    CFeatures& features() { return features_; }
    const CFeatures& features() const { return features_; }

    CListExport& listExport() { return export_; }

    /// Which devices are selected: no edit, and never saved.
    CSelection& selection() { return selection_; }
    const CSelection& selection() const { return selection_; }

    /// What the floor shows and how large. A command that changes a value also writes it to the settings.
    DisplaySettings& display() { return display_; }
    const DisplaySettings& display() const { return display_; }

    /// The records are being replaced, or must be left alone for another reason.
    bool busy() const { return watch_.busy() || pauses_.any(); }
    CPauses& pauses() { return pauses_; }

    /// Devices that discovery added since the datafile was opened.
    std::size_t discovered() const { return featureAnswers_.discovered(); }

    // ---- the datafile

    /// Leaves the datafile (see openDatafile), empties the document and fills it anew.
    void newDatafile();

    /// Opens a datafile, starts the timers and, where the user wants it, Live Stat. A datafile that is left
    /// for it is released first when Live Stat runs on it, and background changes of it are saved. On failure
    /// everything stays as it was; the error has been logged.
    std::optional<Datafile::Error> openDatafile(const std::string& path);

    /// Where another station saved meanwhile, its file is read and this station's changes are put on top of
    /// it and saved: every record is another one then. Deferred while a reload waits for Live Stat; the
    /// changes are saved with the reload, and where the share does not answer within a frame, unless the
    /// user waits for it. A save that fails is tried again by the watch until it succeeds.
    SaveReport saveDatafile(WaitFor waitFor = WaitFor::Frame);
    SaveReport saveDatafileAs(const std::string& path);

    /// Changes were made in the background: the periodic save writes them.
    void changesPending() { watch_.setPendingChanges(true); }

    /// It cannot be written: as found when it was read, or by the last save.
    bool readOnly() const;

    /// A window shows the criteria of this type, or shows none any more: no station runs a rule that is half
    /// typed. Live Stat leaves the type alone here, and what is edited of its criteria is saved with the next
    /// call.
    SaveReport showCriteriaOf(std::optional<std::int32_t> type);

    /// What could not be saved is on disk here, and goes to the datafile when it is next opened.
    bool unsavedEditsKept() const { return kept_.unsaved.allKept(); }

    /// The log of values that gave way to others; empty where this station keeps none.
    std::string logFilePath() const {
        return services_.stateFolder.empty() ? std::string() : CLogFile::pathIn(services_.stateFolder);
    }

    /// Switches Live Stat off, waits for the jobs (milliseconds: they are told to stop), releases the owner
    /// record and saves; then the same with Live Discover. Returns the save's error: then the station goes on
    /// without them and may be shut down again. The destructor does the same when nobody did.
    std::optional<FileError> shutDown();

    // ---- edits

    /// The one way in which a user changes the document; see CEditDoor.
    SaveReport edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change) {
        return edits_.edit(request, change);
    }
    SaveReport undo() { return edits_.undo(); }
    SaveReport redo() { return edits_.redo(); }

    CUserEdits& edits() { return edits_; }
    const CUserEdits& edits() const { return edits_; }

    // ---- when something was changed

    /// Devices changed and no more changes follow at once: has the rows of the List View put in order, then
    /// writes the automatic export.
    void settleList();

    /// At the user's command: the List View's rows in the order that is seen.
    std::optional<FileError> exportNow(const ExportSettings& settings);

    /// What is seen has changed.
    void redraw() { news_.tell(&StationObserver::redrawNeeded); }

private:
    // DocumentObserver
    void documentReplaced() override;

    void begin();
    void tellProgramsThePath();
    void leaveDatafile();
    void endWork();
    void reminderTick();
    bool wantsLiveStat() const;

    StationServices services_;
    CStationNews news_;
    CPauses pauses_;
    DisplaySettings display_;
    CMirovaneDoc document_;
    CSelection selection_;
    CDatafileLink link_;
    KeptState kept_;
    CFeatureAnswers featureAnswers_;
    CWatchAnswers watchAnswers_;
    CDatafileWatch watch_;
    CUserEdits edits_;
    CListExport export_;
    CReminders reminders_;
    CFeatures features_;
};

} // namespace mirovane
