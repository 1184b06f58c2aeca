#include "ui/frame/ToolsCommands.h"

#include "model/Text.h"
#include "ui/dialogs/CriteriaWindow.h"
#include "ui/dialogs/LiveStatOptionsWindow.h"
#include "ui/dialogs/SaveFailure.h"
#include "ui/floor/FloorMap.h"

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
                       {[this](const CommandDefinition&, bool) { station_.liveStat().toggleTracking(); },
                        [this](const CommandDefinition&) {
                            return station_.liveStat().tracking();
                        }});
}

void CToolsCommands::openLiveStatOptions(QWidget* asking) {
    options_ = new CLiveStatOptionsWindow(station_, dialogs_, asking ? asking : parts_.window);
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
    CMirovaneDoc& document = station_.document();
    const auto path = dialogs_.chooseFileToOpen(
        {"Floor Map",
         shownMapPath(document),
         {"Bitmap Files (*.bmp)", "Pictures (*.bmp *.png *.jpg *.jpeg)", "All Files (*)"}});
    if (!path)
        return;
    document.setFloorMapPath(*path);
    parts_.onFloorMap();
    if (const auto error = station_.saveDatafile())
        dialogs_.fail(saveFailureText(*error));
}

} // namespace mirovane
