#include "ui/frame/commands/ReminderCommands.h"

#include "station/ReminderEdits.h"
#include "ui/widgets/SaveFailure.h"

namespace mirovane {

void CReminderCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ReminderPutOff,
                       {[this](const CommandDefinition& command, bool) {
                            report(putOffReminders(station_, static_cast<ReminderDelay>(command.value)));
                        },
                        {}});
    actions.setHandler(CommandId::ReminderDone,
                       {[this](const CommandDefinition&, bool) { report(endReminders(station_)); }, {}});
}

void CReminderCommands::report(const SaveReport& saved) {
    if (saved.failed())
        dialogs_.fail(saveFailureText(*saved.error));
}

} // namespace mirovane
