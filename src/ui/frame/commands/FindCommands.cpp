#include "ui/frame/commands/FindCommands.h"

#include "model/find/Proximity.h"
#include "model/find/QuickFind.h"
#include "ui/find/FindDialog.h"
#include "ui/find/FlashRing.h"
#include "ui/find/QuickFindPopup.h"
#include "ui/floor/MirovaneView.h"
#include "ui/widgets/WaitCursor.h"

#include <QPointer>

namespace mirovane {

namespace {

constexpr const char* notFound = "Cannot find the text. Check criteria/condition again.";

std::string groupedMessage(std::size_t moved) {
    if (moved == 0)
        return "Grouped by proximity: every device is next to its nearest already";
    return "Grouped by proximity: " + std::to_string(moved) + " device(s) changed places in the list";
}

} // namespace

std::optional<FindSettings> askFind(const FindSettings& settings, QWidget* window) {
    const QPointer<CFindDialog> dialog(new CFindDialog(settings, window));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog)
        return std::nullopt; // the window it belongs to has closed
    std::optional<FindSettings> chosen;
    if (accepted)
        chosen = dialog->settings();
    delete dialog;
    return chosen;
}

CFindCommands::CFindCommands(Parts parts)
    : parts_(std::move(parts)), find_(parts_.station.document(), parts_.station.selection()) {}

void CFindCommands::connectTo(CCommandActions& actions) {
    const auto connectOne = [&actions](CommandId id, std::function<void()> run) {
        actions.setHandler(id, {[run = std::move(run)](const CommandDefinition&, bool) { run(); }, {}});
    };
    connectOne(
        CommandId::EditFind, [this] { find(From::Floor, &parts_.window); });
    connectOne(
        CommandId::EditFindNext, [this] { findNext(); });
    connectOne(
        CommandId::EditFindReminderDue, [this] { findReminderDue(); });
    connectOne(
        CommandId::EditQuickFind, [this] { quickFind(); });
    connectOne(CommandId::ToolsGroupByProximity, [this] { groupByProximity(); });
}

// ---- Find

/// Who searches in the window of Discovered/Misc means its devices.
void CFindCommands::find(From from, QWidget* window) {
    FindSettings shown = find_.settings();
    shown.FindIncludeMisc = shown.FindIncludeMisc || from == From::DiscoveredMisc;
    const auto chosen = parts_.askFind(shown, window);
    if (!chosen)
        return;
    find_.setSettings(*chosen);
    search(find_.settings().mode(), From::Floor);
}

void CFindCommands::findNext(From from) {
    search(find_.settings().mode(), from);
}

void CFindCommands::findReminderDue(From from) {
    search(FindMode::ReminderDue, from);
}

void CFindCommands::findMarker(std::int32_t recID) {
    parts_.floor.setSelectedMarker(recID);
    const FindSettings before = find_.settings();
    find_.setSettings(before.forMarker(recID));
    findNext();
    find_.setSettings(before);
}

void CFindCommands::search(FindMode mode, From from) {
    FindState state = parts_.floor.state().find;
    const CHardware* found = find_.next(mode, state, from);
    parts_.floor.setFind(state);
    if (found)
        showFound(*found);
    else
        parts_.dialogs.fail(notFound);
}

/// Devices that a check changes meanwhile stay the same records, so the view may follow the check.
void CFindCommands::showFound(const CHardware& device) {
    if (device.Type == DeviceType::LocationMarker)
        parts_.floor.setSelectedMarker(device.RecID);
    if (parts_.station.features().liveStat().settings().LSAutoPerform &&
        !parts_.station.features().liveStat().tracking())
        parts_.station.features().liveStat().performNow();
    if (device.inDiscovered())
        parts_.showInDiscovered(device, false);
    else
        parts_.floor.showDevice(device);
}

// ---- quick find

void CFindCommands::quickFind() {
    const QPoint middle = parts_.window.mapToGlobal(QPoint(parts_.window.width() / 2, 0));
    quickFind(middle + QPoint(-340, parts_.window.height() / 8));
}

void CFindCommands::quickFind(QPoint at, const QString& typed) {
    if (!popup_) {
        popup_ =
            new CQuickFindPopup(parts_.station.document(), parts_.floor.drawing().icons(), &parts_.window);
        QObject::connect(popup_, &CQuickFindPopup::deviceChosen, popup_, [this](const DeviceKey& key) {
            if (const CHardware* device = parts_.station.document().findDevice(key))
                show(*device);
            else
                parts_.log.LogMessage("The device is no longer in the datafile", true);
        });
    }
    popup_->present(at, typed);
}

/// A device of a hidden type shows up, too: as one that a search found.
void CFindCommands::show(const CHardware& device) {
    CSelection& selection = parts_.station.selection();
    selection.none();
    selection.add(device);
    FindState state = parts_.floor.state().find;
    state.clicked();
    state.FindNothingFound = false;
    parts_.floor.setFind(state);
    if (device.inDiscovered()) {
        parts_.showInDiscovered(device, true);
        return;
    }
    if (device.Type == DeviceType::LocationMarker)
        parts_.floor.setSelectedMarker(device.RecID);
    raiseWindow();
    parts_.floor.centreOn(device);
    CFlashRing::flash(*parts_.floor.viewport(), parts_.floor.iconRect(device));
}

void CFindCommands::raiseWindow() {
    parts_.window.setWindowState(parts_.window.windowState() & ~Qt::WindowMinimized);
    parts_.window.raise();
    parts_.window.activateWindow();
    parts_.floor.setFocus();
}

bool CFindCommands::showBest(const std::string& text) {
    const QuickFindResult found = CQuickFind(parts_.station.document()).find(text, 1);
    if (found.devices.empty()) {
        parts_.log.LogMessage("No device fits \"" + text + "\"", true);
        return false;
    }
    show(*found.devices.front());
    return true;
}

// ---- the order of the list

void CFindCommands::groupByProximity() {
    const CWaitCursor wait;
    std::size_t moved = 0;
    const EditRequest request{
        EditRequest::Kind::Settings, "Group by proximity", {}, EditRequest::Saving::Later};
    parts_.station.edit(request,
                        [&moved](CMirovaneDoc& document) { moved = mirovane::groupByProximity(document); });
    parts_.log.LogMessage(groupedMessage(moved), true);
}

} // namespace mirovane
