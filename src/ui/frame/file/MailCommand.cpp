#include "ui/frame/file/MailCommand.h"

#include "platform/files/FilePaths.h"

#include <QObject>

namespace mirovane {

void CMailCommand::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::FileSend, {[this](const CommandDefinition&, bool) { send(); }, {}});
}

void CMailCommand::send() {
    const bool onDisk = !station_.datafile().path().empty() && !station_.document().modified();
    if (!onDisk && !files_.save())
        return;
    const std::string& path = station_.datafile().path();
    const std::error_code error = launcher_.start({"xdg-email", "--subject", nameOf(path), "--attach", path});
    if (error)
        dialogs_.fail(QObject::tr("The mail could not be started.\n\nThe program xdg-email: %1. It is in the "
                                  "package xdg-utils.")
                          .arg(QString::fromStdString(error.message()))
                          .toStdString());
}

} // namespace mirovane
