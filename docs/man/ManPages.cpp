#include "app/OptionTable.h"
#include "cli/Commands.h"
#include "cli/station/StationOptionTable.h"
#include "docs/man/Reference.h"
#include "docs/man/Roff.h"
#include "model/records/FieldNames.h"

#include <span>

namespace mirovane::reference {

namespace {

void addOptions(CRoff& page, std::span<const DesktopOption> options) {
    for (const DesktopOption& option : options)
        page.option("--" + std::string(option.name), option.value, option.help);
}

void addCommand(CRoff& page, const Command& command) {
    page.subsection(command.name);
    page.rawParagraph("\\fBmirovanectl " + CRoff::escaped(command.name) + "\\fR\n");
    page.line(command.usage);
    page.paragraph(std::string(command.help) + ".");
    for (const OptionDefinition& option : command.options)
        page.option(option.name, option.valueNames, option.help);
    page.paragraphs(command.details);
}

void addExitStatus(CRoff& page) {
    page.section("EXIT STATUS");
    page.term("0", "done");
    page.term("1", "the answer is no: a host is silent, nothing was found or matches, something is odd");
    page.term("2", "the command line, a settings file or the pattern of match is wrong");
    page.term("3", "a file could not be read or written");
    page.term("4", "another station runs Live Stat or Live Discover, and was not to be interrupted");
}

std::string sourceOf(std::string_view program, const Release& release) {
    return std::string(program) + " " + release.version;
}

} // namespace

std::string mirovanePage(const Release& release) {
    CRoff page("MIROVANE", "1", release.date, sourceOf("mirovane", release));
    page.section("NAME");
    page.raw("mirovane \\- live floor plan of a site with every device on it\n");
    page.section("SYNOPSIS");
    page.raw("\\fBmirovane\\fR [\\fB\\-\\-config\\fR \\fIDIR\\fR] [\\fB\\-\\-find\\fR \\fITEXT\\fR] "
             "[\\fIDATAFILE\\fR]\n.br\n"
             "\\fBmirovane \\-\\-render\\fR \\fIOUT.png DATAFILE\\fR [\\fIOPTION\\fR...]\n.br\n"
             "\\fBmirovane \\-\\-print\\fR \\fIOUT.pdf DATAFILE\\fR [\\fIOPTION\\fR...]\n");
    page.section("DESCRIPTION");
    page.paragraph("Keeps the floor plan of a site with every device on it, and watches the devices live. "
                   "Without DATAFILE it starts with a new, empty floor. Where a window has DATAFILE open "
                   "already, that window comes up. The manual is in the Help menu (F1).");
    page.section("OPTIONS");
    addOptions(page, windowOptions);
    page.paragraph("Options of the window system, such as -platform and -style, work as well.");
    page.subsection("Of --render and --print");
    page.paragraph("Both change neither the datafile nor anybody's settings.");
    addOptions(page, commonDrawOptions);
    page.subsection("Of --render");
    addOptions(page, pictureOptions);
    page.subsection("Of --print");
    addOptions(page, pageOptions);
    page.section("EXIT STATUS");
    page.term("0", "done");
    page.term("1", "--find found no device");
    page.term("2", "the command line is wrong");
    page.term("3", "a file could not be read or written");
    page.section("FILES");
    page.term("~/.config/mirovane/mirovane.ini", "the user's settings");
    page.term("~/.local/state/mirovane",
              "edits that could not be saved yet, and the log of values that gave way");
    page.section("SEE ALSO");
    page.raw("\\fBmirovanectl\\fR(1), \\fBmirovane.mv\\fR(5)\n");
    return page.text();
}

std::string mirovanectlPage(const Release& release) {
    CRoff page("MIROVANECTL", "1", release.date, sourceOf("mirovanectl", release));
    page.section("NAME");
    page.raw("mirovanectl \\- read, change and watch Mirovane datafiles without a display\n");
    page.section("SYNOPSIS");
    page.raw("\\fBmirovanectl\\fR [\\fB\\-\\-config\\fR \\fIDIR\\fR] \\fICOMMAND\\fR ...\n");
    page.section("DESCRIPTION");
    page.paragraph("For scripts, cron jobs, and a server that runs Live Stat and Live Discover day and night "
                   "while desktops only look. Results go to standard output, diagnostics to standard error "
                   "as \"mirovanectl: what failed: why\". Text is UTF-8. Options may be anywhere; -- ends "
                   "them.");
    for (const OptionDefinition& option : programOptions)
        page.option(option.name, option.valueNames, option.help);
    page.section("COMMANDS");
    for (const Command* command : commands())
        addCommand(page, *command);
    page.section("\"SETTINGS OF A STATION\"");
    page.paragraph("The file that station --settings names holds a NAME=VALUE on each line. Blanks around "
                   "both do not count, double quotes around a value keep its own, lines that begin with # "
                   "are comments. Keys without a value below are set by yes or no.");
    for (const OptionDefinition& key : stationSettingsKeys)
        page.option(key.name.substr(2), key.valueNames, key.help);
    addExitStatus(page);
    page.section("FILES");
    page.term("/etc/mirovane/NAME.conf", "settings of the service mirovane-station@NAME");
    page.term("~/.config/mirovane", "the user's settings, and samba-credentials");
    page.term("~/.local/state/mirovane",
              "edits that could not be saved yet, and the log of values that gave way");
    page.section("SEE ALSO");
    page.raw("\\fBmirovane\\fR(1), \\fBmirovane.mv\\fR(5), \\fBsystemctl\\fR(1)\n");
    return page.text();
}

std::string datafilePage(const Release& release) {
    CRoff page("MIROVANE.MV", "5", release.date, sourceOf("mirovane", release));
    page.section("NAME");
    page.raw("mirovane.mv \\- datafile of a floor with its devices\n");
    page.section("DESCRIPTION");
    page.paragraph("A binary file, by its ending .mv, that any number of programs on a share may have open. "
                   "Numbers are little-endian; texts are the bytes of the station that wrote them, UTF-8 "
                   "where they are valid UTF-8, else Windows-1252. It is replaced as a whole, under a lock "
                   "on the file itself; stations that meet there are merged field by field. Older layouts "
                   "are read and saved in the current one, 2008.");
    page.paragraph("Each record has a Type: above 0 it is a device, below 0 it carries settings that all "
                   "stations share: the floor map (-1), an External Application (-2), who runs Live Stat "
                   "(-3), a range of Live Discover (-4), who runs Live Discover (-5), the layout (-6), and "
                   "the Live Stat criteria. A device in the Discovered/Misc window has its type plus 1000.");
    page.section("FIELDS");
    page.paragraph("As mirovanectl records --json prints them, and mirovanectl set changes them:");
    for (const RecordField& field : recordFields())
        page.term(field.name, field.keeper.empty() ? std::string_view("set by the user") : field.keeper);
    page.section("EXAMPLES");
    page.example("mirovanectl check floor2.mv\nmirovanectl records floor2.mv --json");
    page.section("SEE ALSO");
    page.raw("\\fBmirovane\\fR(1), \\fBmirovanectl\\fR(1)\n.PP\nThe manual describes every byte, under "
             "\\(lqThe datafile\\(rq.\n");
    return page.text();
}

} // namespace mirovane::reference
