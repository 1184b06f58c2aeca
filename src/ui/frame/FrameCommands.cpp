#include "ui/frame/FrameCommands.h"

#include "ui/floor/MirovaneView.h"
#include "ui/frame/FrameWindows.h"
#include "ui/list/ListViewWindow.h"

namespace mirovane {

CFrameCommands::CFrameCommands(const FrameServices& services, const Parts& parts)
    : services_(services),
      parts_(parts),
      files_(services.station, services.dialogs, services.recent, parts.refresh),
      export_(services.station, services.settings, services.dialogs),
      mail_(services.station, services.dialogs, services.launcher, files_),
      view_(services.station.display(), services.settings,
            {parts.toolbar, parts.statusBar, [this] { parts_.windows.showMessageLog(); },
             [this] { parts_.windows.showListView(); },
             [this] {
                 parts_.floor.viewport()->update();
             }}),
      zoom_(*new CFloorZooming(parts.floor, services.station.display(), services.settings), services.dialogs),
      print_(parts.floor, services.station, services.dialogs),
      tools_(services.station, services.dialogs,
             {&parts.frame, services.settings, services.clock, [this] { parts_.floor.viewport()->update(); },
              [this] {
                  parts_.floor.drawing().reloadIcons();
              }}),
      editing_({services.station, parts.floor, services.dialogs, services.settings, services.log}),
      find_({services.station, services.dialogs, parts.floor, services.log, parts.frame,
             [this](const CHardware& device, bool flash) { discovered_.discovered().show(device, flash); },
             askFind}),
      reminders_(services.station, services.dialogs),
      properties_({services.station, services.clock, parts.frame,
                   [this] { return parts_.floor.drawing().mapSize(); },
                   [this](std::int32_t recID) { showDevice(recID); },
                   [this](std::int32_t recID) { parts_.floor.input().startMarking(recID); },
                   [this] {
                       parts_.floor.input().endMarking();
                   }}),
      discovered_({services.station, services.dialogs, services.settings, services.log, parts.floor, find_,
                   properties_, parts.frame}),
      applications_({services.station, services.dialogs, services.settings, services.log, services.launcher,
                     parts.frame}),
      help_(services.dialogs) {}

void CFrameCommands::connectTo(CCommandActions& actions) {
    files_.connectTo(actions);
    export_.connectTo(actions);
    mail_.connectTo(actions);
    view_.connectTo(actions);
    zoom_.connectTo(actions);
    print_.connectTo(actions);
    tools_.connectTo(actions);
    editing_.connectTo(actions);
    find_.connectTo(actions);
    reminders_.connectTo(actions);
    discovered_.connectTo(actions);
    applications_.connectTo(actions);
    help_.connectTo(actions);
    properties_.connectTo(actions);
    const auto on = [&actions](CommandId id, std::function<void()> run) {
        actions.setHandler(id, {[run = std::move(run)](const CommandDefinition&, bool) { run(); }, {}});
    };
    if (services_.station.features().discoverNow())
        on(
            CommandId::ToolsDiscoverNow, [this] { parts_.windows.showDiscoverNow(); });
    on(CommandId::FileExit, [this] { parts_.frame.close(); });
}

std::string CFrameCommands::targets() const {
    return targetsText(services_.station.selection().members(CSelection::Scope::Floor));
}

void CFrameCommands::editListRows() {
    CListViewWindow& list = *parts_.windows.listView();
    const CListViewModel& rows = list.rows();
    std::vector<const CHardware*> selected;
    CPropertiesEditor::Neighbours order;
    for (int row = 0; row < rows.rowCount(); ++row) {
        order.push_back(services_.station.document().keyOf(*rows.recordAt(row)));
        if (rows.isSelected(row))
            selected.push_back(rows.recordAt(row));
    }
    properties_.run(selected, list, std::move(order));
}

void CFrameCommands::showDevice(std::int32_t recID) {
    const CHardware* device = services_.station.document().findDevice(recID);
    if (!device)
        return;
    if (device->onFloor())
        return parts_.floor.showDevice(*device);
    services_.station.selection().only(*device);
    discovered_.discovered().show(*device, true);
}

void CFrameCommands::storeTyping() {
    applications_.storeTyping();
    tools_.storeTyping();
}

} // namespace mirovane
