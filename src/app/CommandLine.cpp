#include "app/CommandLine.h"

#include "app/UsageText.h"

namespace mirovane {

Result<CommandLine, QString> parseCommandLine(const QStringList& arguments) {
    CommandLine line;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (!optionsEnded && argument == QStringLiteral("--")) {
            optionsEnded = true;
        } else if (!optionsEnded && argument == QStringLiteral("--config")) {
            if (++i == arguments.size())
                return QStringLiteral("--config needs a folder");
            line.configFolder = arguments[i];
        } else if (!optionsEnded && argument.startsWith(QStringLiteral("--config="))) {
            line.configFolder = argument.section(u'=', 1);
        } else if (!optionsEnded && argument == QStringLiteral("--find")) {
            if (++i == arguments.size() || arguments[i].trimmed().isEmpty())
                return QStringLiteral("--find needs a text");
            line.find = arguments[i];
        } else if (!optionsEnded && argument.startsWith(QStringLiteral("--find="))) {
            line.find = argument.section(u'=', 1);
        } else if (!optionsEnded && argument.startsWith(u'-') && argument.size() > 1) {
            return QStringLiteral("unknown option ") + argument;
        } else if (!line.datafile.isEmpty()) {
            return QStringLiteral("only one datafile can be opened, not %1 and %2")
                .arg(line.datafile, argument);
        } else {
            line.datafile = argument;
        }
    }
    return line;
}

QString usageText() {
    return QStringLiteral(
               "Usage: mirovane [--config DIR] [--find TEXT] [DATAFILE]\n"
               "       mirovane --render OUT.png DATAFILE [OPTIONS]\n"
               "       mirovane --print OUT.pdf DATAFILE [OPTIONS]\n"
               "\n"
               "Keeps the floor plan of a site with every device on it, and watches the devices live.\n"
               "Without DATAFILE it starts with a new, empty floor. Where a window has DATAFILE open "
               "already, that\n"
               "window comes up.\n"
               "\n") +
           optionLines(windowOptions) +
           QStringLiteral("\n"
                          "Options of the window system, such as -platform and -style, work as well.\n"
                          "For a computer without a display there is \"mirovanectl station\".\n");
}

} // namespace mirovane
