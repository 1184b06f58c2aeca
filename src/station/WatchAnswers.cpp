#include "station/WatchAnswers.h"

#include "station/Station.h"

namespace mirovane {

void CWatchAnswers::startReminders(std::chrono::milliseconds period) {
    if (!reminders_.start(period))
        log_.LogTrouble("System is out of timer resource!", true);
}

/// Live Stat and Live Discover look whether another station has claimed them.
void CWatchAnswers::datafileRead() {
    features_.afterReload();
    station_.redraw();
}

void CWatchAnswers::saveTried() {
    kept_.unsaved.keep(station_.datafile().path());
}

void CWatchAnswers::listChanged() {
    station_.settleList();
}

} // namespace mirovane
