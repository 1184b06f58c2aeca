#include "ui/frame/ToolsCommands.h"

#include "model/Text.h"
#include "ui/floor/FloorMap.h"
#include "ui/frame/FileCommands.h"

#include <QFile>

namespace mirovane {

namespace {

std::string shownMapPath(const CMirovaneDoc& document) {
    if (document.floorMapPath().empty())
        return {};
    const QString datafile = QFile::decodeName(document.path().c_str());
    const QString named = QString::fromStdString(displayText(document.floorMapPath()));
    return QFile::encodeName(locateMap(named, datafile)).toStdString();
}

} // namespace

CToolsCommands::CToolsCommands(CStation& station, FrameDialogs& dialogs, std::function<void()> onFloorMap)
    : station_(station), dialogs_(dialogs), onFloorMap_(std::move(onFloorMap)) {}

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
}

void CToolsCommands::chooseFloorMap() {
    CMirovaneDoc& document = station_.document();
    const auto path = dialogs_.chooseFileToOpen(
        {"Floor Map",
         shownMapPath(document),
         {"Bitmap Files (*.bmp)", "Pictures (*.bmp *.png *.jpg *.jpeg)", "All Files (*)"}});
    if (!path)
        return;
    document.setFloorMapPath(*path);
    onFloorMap_();
    if (const auto error = station_.saveDatafile())
        dialogs_.fail("The datafile could not be saved.\n\n" + error->sentence + "\n\n" + remedy(*error));
}

} // namespace mirovane
