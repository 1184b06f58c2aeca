#include "ui/frame/commands/ToolsCommands.h"

#include "model/FloorMap.h"
#include "ui/livestat/CriteriaWindow.h"
#include "ui/livestat/LiveStatOptionsWindow.h"
#include "ui/widgets/SaveFailure.h"

namespace mirovane {

CToolsCommands::CToolsCommands(CStation& station, FrameDialogs& dialogs, Parts parts)
    : station_(station), dialogs_(dialogs), parts_(std::move(parts)) {}

void CToolsCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ToolsPhotoPath,
                       {[this](const CommandDefinition&, bool) { choosePhotos(); }, {}});
    actions.setHandler(CommandId::ToolsLiveStat,
                       {[this](const CommandDefinition&, bool) { station_.features().liveStat().toggle(); },
                        [this](const CommandDefinition&) {
                            return station_.features().liveStat().enabled();
                        }});
    actions.setHandler(CommandId::ToolsLiveDiscover, {[this](const CommandDefinition&, bool) {
                                                          station_.features().liveDiscover().toggle();
                                                      },
                                                      [this](const CommandDefinition&) {
                                                          return station_.features().liveDiscover().enabled();
                                                      }});
    actions.setHandler(
        CommandId::ToolsLiveStatNow,
        {[this](const CommandDefinition&, bool) { station_.features().liveStat().performNow(); }, {}});
    actions.setHandler(CommandId::ToolsLiveStatOptions,
                       {[this](const CommandDefinition&, bool) { openLiveStatOptions(); }, {}});
    actions.setHandler(CommandId::ToolsTrackLiveStat, {[this](const CommandDefinition&, bool) {
                                                           station_.features().liveStat().toggleTracking();
                                                       },
                                                       [this](const CommandDefinition&) {
                                                           return station_.features().liveStat().tracking();
                                                       }});
}

void CToolsCommands::openLiveStatOptions(QWidget* asking) {
    options_ = new CLiveStatOptionsWindow({station_, parts_.settings, parts_.clock, dialogs_},
                                          asking ? asking : parts_.window);
    options_->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(options_, &QDialog::accepted, parts_.window, parts_.reloadIcons);
    options_->open();
}

void CToolsCommands::storeTyping() {
    if (!options_)
        return;
    for (CCriteriaWindow* criteria : options_->findChildren<CCriteriaWindow*>())
        criteria->storeTyping();
}

/// The folder belongs to the floor, the size to the user.
void CToolsCommands::choosePhotos() {
    DisplaySettings& display = station_.display();
    const PhotoSettings before{floorMapOf(station_.document()).photoFolder, display.PhotoScale};
    const auto chosen = dialogs_.askPhotoSettings(before);
    if (!chosen)
        return;
    parts_.settings.write("PhotoScale", chosen->PhotoScale);
    display.PhotoScale = chosen->PhotoScale;
    parts_.repaintFloor();
    if (chosen->folder != before.folder)
        storePhotoFolder(chosen->folder);
}

void CToolsCommands::storePhotoFolder(const std::string& folder) {
    const SaveReport report = station_.edit({EditRequest::Kind::Settings, "Choose the photo folder", {}},
                                            [&folder](CMirovaneDoc& document) {
                                                FloorMapValues map = floorMapOf(document);
                                                map.photoFolder = folder;
                                                setFloorMap(document, map);
                                            });
    if (report.failed())
        dialogs_.fail(saveFailureText(*report.error));
}

} // namespace mirovane
