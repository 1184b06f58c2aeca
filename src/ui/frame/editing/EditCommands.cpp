#include "ui/frame/editing/EditCommands.h"

#include "model/floor/Pasting.h"
#include "ui/widgets/WaitCursor.h"

#include <QClipboard>
#include <QGuiApplication>

#include <utility>

namespace mirovane {

namespace {

/// Room for an icon and its labels.
constexpr PixelSize pasteCell{96, 72};

using Scope = CSelection::Scope;

} // namespace

CEditCommands::CEditCommands(const EditingParts& parts)
    : parts_(parts), runner_(parts.station, parts.dialogs) {}

void CEditCommands::connectTo(CCommandActions& actions) {
    const auto handle = [this, &actions](CommandId id, void (CEditCommands::*run)()) {
        actions.setHandler(id, {[this, run](const CommandDefinition&, bool) { (this->*run)(); }, {}});
    };
    handle(CommandId::EditCut, &CEditCommands::cut);
    handle(CommandId::EditCopy, &CEditCommands::copy);
    handle(CommandId::EditPaste, &CEditCommands::paste);
    handle(CommandId::EditDelete, &CEditCommands::deleteSelected);
    handle(CommandId::EditMoveTo, &CEditCommands::moveToMisc);
    handle(CommandId::ToolsResetLiveStatus, &CEditCommands::resetLiveStatus);
    actions.setHandler(CommandId::EditArrange, {[this](const CommandDefinition& command, bool) {
                                                    arrange(static_cast<Arrangement>(command.value));
                                                },
                                                {}});
}

std::vector<DeviceKey> CEditCommands::selectedKeys(Scope scope) const {
    return keysOf(parts_.station.document(), parts_.station.selection().members(scope));
}

// ---- the clipboard

void CEditCommands::copy() {
    const auto devices = parts_.station.selection().members();
    if (!devices.empty())
        QGuiApplication::clipboard()->setText(
            QString::fromStdString(clipboardText(devices, ClipboardForm::Shown)));
}

void CEditCommands::cut() {
    copy();
    if (!parts_.station.selection().empty(Scope::Floor))
        remove();
}

void CEditCommands::paste() {
    const std::string text = QGuiApplication::clipboard()->text().toStdString();
    if (text.empty())
        return;
    ClipboardReading reading;
    std::vector<CHardware> devices;
    const auto read = [&] {
        const CWaitCursor wait;
        reading = readClipboardText(text, parts_.station.document().now());
        devices = placedForPaste(reading, parts_.floor.window(), pasteCell);
    };
    if (!runner_.guarded(read))
        return;
    const std::size_t wanted = devices.size();
    std::size_t added = 0;
    if (wanted > 0 && !runner_.run(addDevices(stepName("Paste", wanted), std::move(devices), added)))
        return;
    parts_.log.LogMessage(pastedMessage(added), true);
    if (const std::string problems = pasteProblems(reading, added); !problems.empty())
        parts_.dialogs.fail(problems);
}

// ---- removing

void CEditCommands::deleteSelected() {
    const std::size_t devices = parts_.station.selection().count(Scope::Floor);
    if (devices > 0 && parts_.dialogs.ask({Question::Kind::DeleteDevices, deleteQuestion(devices, false)}))
        remove();
}

/// The devices are looked up after the question: the records may have been read again meanwhile.
void CEditCommands::remove() {
    runner_.run(deleteDevices(selectedKeys(Scope::Floor)));
}

void CEditCommands::moveToMisc() {
    const std::size_t devices = parts_.station.selection().count(Scope::Floor);
    if (devices == 0 || !parts_.dialogs.ask({Question::Kind::MoveDevices, moveToMiscQuestion(devices)}))
        return;
    if (runner_.run(mirovane::moveToMisc(selectedKeys(Scope::Floor))))
        parts_.log.LogMessage(movedToMiscMessage(devices), true);
}

// ---- changing

void CEditCommands::resetLiveStatus() {
    if (!parts_.station.selection().empty())
        runner_.run(mirovane::resetLiveStatus(selectedKeys(Scope::Everywhere)));
}

void CEditCommands::arrange(Arrangement arrangement) {
    std::vector<DeviceMove> moves = mirovane::arrange(arrangement, parts_.floor.input().hand().selected());
    if (!moves.empty())
        runner_.run(moveDevices(distributes(arrangement) ? "Distribute" : "Align", std::move(moves)));
}

} // namespace mirovane
