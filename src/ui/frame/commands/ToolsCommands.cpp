#include "ui/frame/commands/ToolsCommands.h"

#include "model/FloorMap.h"
#include "model/records/Text.h"
#include "ui/floor/map/FloorMap.h"
#include "ui/livestat/CriteriaWindow.h"
#include "ui/livestat/LiveStatOptionsWindow.h"
#include "ui/widgets/SaveFailure.h"

#include <QFile>

namespace mirovane {

namespace {

std::string shownMapPath(const CStation& station) {
    const std::string stored = floorMapOf(station.document()).mapPath;
    if (stored.empty())
        return {};
    const QString datafile = QFile::decodeName(station.datafile().path().c_str());
    const QString named = QString::fromStdString(displayText(stored));
    return QFile::encodeName(locateMap(named, datafile)).toStdString();
}

} // namespace

CToolsCommands::CToolsCommands(CStation& station, FrameDialogs& dialogs, Parts parts)
    : station_(station), dialogs_(dialogs), parts_(std::move(parts)) {}

void CToolsCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ToolsFloorMap,
                       {[this](const CommandDefinition&, bool) { chooseFloorMap(); }, {}});
    actions.setHandler(CommandId::ToolsLiveStat,
                       {[this](const CommandDefinition&, bool) { station_.toggleLiveStat(); },
                        [this](const CommandDefinition&) {
                            return station_.liveStat().enabled();
                        }});
    actions.setHandler(CommandId::ToolsLiveDiscover,
                       {[this](const CommandDefinition&, bool) { station_.toggleLiveDiscover(); },
                        [this](const CommandDefinition&) {
                            return station_.liveDiscover().enabled();
                        }});
    actions.setHandler(CommandId::ToolsLiveStatNow,
                       {[this](const CommandDefinition&, bool) { station_.liveStatNow(); }, {}});
    actions.setHandler(CommandId::ToolsLiveStatOptions,
                       {[this](const CommandDefinition&, bool) { openLiveStatOptions(); }, {}});
    actions.setHandler(CommandId::ToolsTrackLiveStat,
                       {[this](const CommandDefinition&, bool) { station_.toggleTracking(); },
                        [this](const CommandDefinition&) {
                            return station_.liveStat().tracking();
                        }});
}

void CToolsCommands::openLiveStatOptions(QWidget* asking) {
    options_ = new CLiveStatOptionsWindow({station_, parts_.settings, parts_.clock, dialogs_},
                                          asking ? asking : parts_.window);
    options_->setAttribute(Qt::WA_DeleteOnClose);
    options_->open();
}

void CToolsCommands::storeTyping() {
    if (!options_)
        return;
    for (CCriteriaWindow* criteria : options_->findChildren<CCriteriaWindow*>())
        criteria->storeTyping();
}

void CToolsCommands::chooseFloorMap() {
    const auto path = dialogs_.chooseFileToOpen(
        {"Floor Map",
         shownMapPath(station_),
         {"Bitmap Files (*.bmp)", "Pictures (*.bmp *.png *.jpg *.jpeg)", "All Files (*)"}});
    if (!path)
        return;
    const SaveReport report = station_.edit({EditRequest::Kind::Settings, "Choose the floor map", {}},
                                            [&path](CMirovaneDoc& document) {
                                                FloorMapValues map = floorMapOf(document);
                                                map.mapPath = *path;
                                                setFloorMap(document, map);
                                            });
    parts_.onFloorMap();
    if (report.failed())
        dialogs_.fail(saveFailureText(*report.error));
}

} // namespace mirovane
