#include "ui/frame/commands/ToolsCommands.h"

#include "ui/livestat/CriteriaWindow.h"
#include "ui/livestat/LiveStatOptionsWindow.h"

namespace mirovane {

CToolsCommands::CToolsCommands(CStation& station, FrameDialogs& dialogs, Parts parts)
    : station_(station), dialogs_(dialogs), parts_(std::move(parts)) {}

void CToolsCommands::connectTo(CCommandActions& actions) {
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

} // namespace mirovane
