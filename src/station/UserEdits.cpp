#include "station/UserEdits.h"

#include "station/Station.h"

namespace mirovane {

namespace {

/// A window that collects edits makes one every second or two. If each put the next tick off, nothing would
/// be read or saved as long as the user types.
bool stopsWatch(const EditRequest& request) {
    return request.saving == EditRequest::Saving::Now || request.kind != EditRequest::Kind::Settings;
}

} // namespace

CUserEdits::CUserEdits(CStation& station, const Parts& parts)
    : station_(station),
      parts_(parts),
      door_(parts.document, parts.log, *this),
      liveMove_(parts.document, parts.watch, door_) {}

SaveReport CUserEdits::undo() {
    if (liveMove_.held())
        return {}; // what is under the hand is not a step yet
    readNews();
    return door_.undo();
}

SaveReport CUserEdits::redo() {
    if (liveMove_.held())
        return {};
    readNews();
    return door_.redo();
}

void CUserEdits::bringToFront(const CHardware& device) {
    CMirovaneDoc& document = parts_.document;
    std::size_t end = document.size();
    while (end > 0 && !document.at(end - 1).isDevice())
        --end;
    const auto place = document.indexOfDevice(device.RecID);
    if (end == 0 || !place || &document.at(*place) != &device || *place == end - 1)
        return;
    if (!parts_.features.liveStat().holdsDevice(document.at(end - 1).RecID))
        document.exchange(*place, end - 1);
}

void CUserEdits::readNews() {
    if (door_.changing() || !parts_.watch.behind())
        return;
    waitForLiveStat();
    parts_.watch.catchUp();
}

void CUserEdits::forget() {
    door_.forgetHistory();
    liveMove_.forget();
}

void CUserEdits::historyChanged() {
    parts_.news.tell(&StationObserver::historyChanged);
}

void CUserEdits::waitForLiveStat() {
    parts_.features.liveStat().stopJobs();
    parts_.features.liveStat().waitForJobs();
}

void CUserEdits::beforeEdit(const EditRequest& request) {
    if (stopsWatch(request))
        parts_.watch.beginEdit();
    pause_.emplace(parts_.pauses);
    CLiveStatScheduler& liveStat = parts_.features.liveStat();
    const auto& devices = request.devices;
    if (request.kind == EditRequest::Kind::Delete) {
        liveStat.pause();
        parts_.log.LogMessage("Deleting item(s)..., waiting for Live Stat to finish with the item.", true);
        waitForLiveStat();
    } else if (request.kind == EditRequest::Kind::Change &&
               (devices.size() > 1 || (devices.size() == 1 && liveStat.holdsDevice(devices.front().recID)))) {
        parts_.log.LogMessage("Updating item(s)..., waiting for Live Stat to finish with the items.", true);
        waitForLiveStat();
    }
}

SaveReport CUserEdits::afterEdit(const EditRequest& request, bool changed) {
    pause_.reset();
    if (request.kind == EditRequest::Kind::Change)
        parts_.log.LogMessage("Updated Item(s)", true);
    CLiveStatScheduler& liveStat = parts_.features.liveStat();
    if (request.kind == EditRequest::Kind::Delete) {
        parts_.log.LogMessage("Deleted item(s).", true);
        liveStat.rebind();
        liveStat.resume();
        if (liveStat.enabled() && parts_.document.deviceCount() == 0)
            liveStat.toggle();
    }
    CDatafileWatch& watch = parts_.watch;
    // A save may take long to fail; the one before has.
    if (request.saving == EditRequest::Saving::Later || watch.lastError())
        parts_.kept.unsaved.keep(station_.datafile().path());
    SaveReport report;
    if (request.saving == EditRequest::Saving::Later)
        watch.setPendingChanges(watch.pendingChanges() || (changed && (station_.datafile().hasToSave() ||
                                                                       !station_.datafile().heldCriteria())));
    else
        report = station_.saveDatafile();
    station_.redraw();
    if (stopsWatch(request))
        watch.endEdit();
    return report;
}

} // namespace mirovane
