#include "cli/station/StationSettings.h"

#include "platform/files/FilePaths.h"

namespace mirovane {

CStationSettings::CStationSettings(const std::string& configFolder)
    : user_(configFolder), store_(user_), settings_(store_) {
    CSettings(user_).initialise();
}

void CStationSettings::take(const StationOptions& options) {
    store_.clear();
    store_.replace("LSAutoStart", options.request.liveStat ? 1 : 0);
    if (options.runSec)
        store_.replace("LSRunSec", *options.runSec);
    if (options.perRun)
        store_.replace("LSNumPerRun", *options.perRun);
    if (options.confirmOff)
        store_.replace("LSConfirmOff", *options.confirmOff);
    if (!options.textExport)
        return;
    CMemorySettingsStore values;
    CSettings written(values);
    options.textExport->write(written, absolutePath(options.request.path));
    store_.replaceAll(values);
}

} // namespace mirovane
