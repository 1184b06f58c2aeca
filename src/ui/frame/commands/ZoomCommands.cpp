#include "ui/frame/commands/ZoomCommands.h"

namespace mirovane {

void CZoomCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ViewZoom, {[this](const CommandDefinition& command, bool) {
                                                 zooming_.run(static_cast<ZoomCommand>(command.value));
                                             },
                                             {}});
    actions.setHandler(CommandId::ViewZoomCustom,
                       {[this](const CommandDefinition&, bool) { askCustom(); }, {}});
}

void CZoomCommands::askCustom() {
    const ZoomState start = zooming_.stored();
    const auto chosen =
        dialogs_.askCustomZoom({start.ZoomPercent, start.ZoomDevicesPercent, start.ZoomFontScale});
    if (chosen)
        zooming_.custom(chosen->ZoomPercent, chosen->ZoomDevicesPercent, chosen->ZoomFontScale);
    else
        zooming_.customCancelled();
}

} // namespace mirovane
