#include "ui/frame/commands/ApplicationCommands.h"

#include "applications/Applications.h"
#include "platform/process/Terminal.h"
#include "ui/applications/ApplicationsWindow.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/SaveFailure.h"

namespace mirovane {

namespace {

/// More windows than this at once are hardly ever meant: somebody has selected the whole floor.
constexpr std::size_t startsWithoutAsking = 20;

std::string manyQuestion(const std::string& name, std::size_t devices) {
    return QObject::tr("%1 devices are selected.\n\nStart \"%2\" %1 times?")
        .arg(devices)
        .arg(shownText(name))
        .toStdString();
}

std::string deleteQuestion(const std::string& name) {
    return QObject::tr("Do you want to delete \"%1\" from the External Applications?")
        .arg(shownText(name))
        .toStdString();
}

} // namespace

CApplicationCommands::CApplicationCommands(Parts parts)
    : parts_(parts), starter_({parts.launcher, parts.settings, parts.log, ownProgramPath()}) {}

void CApplicationCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ToolsApplications,
                       {[this](const CommandDefinition&, bool) { showWindow(); }, {}});
}

void CApplicationCommands::showWindow() {
    if (!window_) {
        window_ = new CApplicationsWindow(
            parts_.station, parts_.settings,
            CApplicationsWindow::Asking{
                [&dialogs = parts_.dialogs](const FileError& error) { dialogs.fail(saveFailureText(error)); },
                [&dialogs = parts_.dialogs](const std::string& name) {
                    return dialogs.ask({Question::Kind::DeleteApplication, deleteQuestion(name)});
                }},
            &parts_.window);
    }
    window_->present();
}

void CApplicationCommands::storeTyping() {
    if (window_)
        window_->store();
}

void CApplicationCommands::run(const ApplicationValues& application) {
    const std::string& name = application.name.empty() ? application.command : application.name;
    const std::vector<CHardware> devices = applicationDevices(parts_.station.selection());
    if (devices.empty()) {
        parts_.log.LogMessage("\"" + name + "\" was not started: no device on the floor map is selected",
                              true);
        return;
    }
    if (devices.size() > startsWithoutAsking &&
        !parts_.dialogs.ask({Question::Kind::StartManyPrograms, manyQuestion(name, devices.size())}))
        return;
    const ApplicationRun planned = planApplicationRun(
        application.command, devices, [&] { return parts_.dialogs.insertText(application.command); });
    starter_.start(name, planned);
}

} // namespace mirovane
