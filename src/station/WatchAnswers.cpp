#include "station/WatchAnswers.h"

#include "station/Station.h"

namespace mirovane {

void CWatchAnswers::startReminders(std::chrono::milliseconds period) {
    if (!parts_.reminders.start(period))
        parts_.log.LogTrouble("System is out of timer resource!", true);
}

/// Live Stat and Live Discover look whether another station has claimed them.
void CWatchAnswers::datafileRead() {
    parts_.features.afterReload();
    station_.redraw();
}

void CWatchAnswers::saveTried() {
    parts_.kept.unsaved.keep(station_.datafile().path());
}

void CWatchAnswers::listChanged() {
    station_.settleList();
}

void CWatchAnswers::answered() {
    parts_.news.tell(&StationObserver::indicatorsChanged);
}

/// No tick meanwhile, and no edit: it could not tell what it is put on.
bool CWatchAnswers::keepWaiting(const std::string& path) {
    const CPause pause(parts_.pauses);
    return parts_.dialogs.keepWaiting(path);
}

} // namespace mirovane
