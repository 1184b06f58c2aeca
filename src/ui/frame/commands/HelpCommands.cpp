#include "ui/frame/commands/HelpCommands.h"

#include "ui/help/HelpPages.h"

namespace mirovane {

CHelpCommands::CHelpCommands(FrameDialogs& dialogs) : dialogs_(dialogs) {
    connect(&help_, &CHelp::pageWanted, this, &CHelpCommands::open);
}

void CHelpCommands::connectTo(CCommandActions& actions) {
    const auto on = [&actions](CommandId id, std::function<void()> run) {
        actions.setHandler(id, {[run = std::move(run)](const CommandDefinition&, bool) { run(); }, {}});
    };
    on(
        CommandId::HelpTopics, [this] { open(helpPageOf(nullptr)); });
    on(
        CommandId::HelpContext, [this] { help_.pointAtSomething(); });
    on(CommandId::HelpAbout, [this] { dialogs_.about(); });
    // In a menu the click brings this line up, and the link in it the page.
    for (const CommandDefinition& command : commandTable())
        if (QAction* action = actions.action(command.name))
            action->setWhatsThis(QStringLiteral("%1<br><a href=\"%2\">%3</a>")
                                     .arg(commandText(command.help).toHtmlEscaped(),
                                          helpPageOfCommand(command.name), tr("More in the manual")));
}

void CHelpCommands::open(const QString& page) {
    const QStringList folders = manualFolders();
    if (const auto path = findManualPage(page, folders)) {
        if (!dialogs_.openPage(*path))
            dialogs_.fail(
                tr("The manual could not be shown.\n\nNo program is set up for web pages. The page is "
                   "%1.")
                    .arg(*path)
                    .toStdString());
        return;
    }
    dialogs_.fail(
        tr("The manual is not installed.\n\nThere is no %1 in %2. Install Mirovane together with its "
           "manual.")
            .arg(page, folders.first())
            .toStdString());
}

} // namespace mirovane
