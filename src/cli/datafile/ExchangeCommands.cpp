#include "cli/base/ChosenDevices.h"
#include "cli/base/ExportOptions.h"
#include "cli/datafile/DatafileCommands.h"
#include "cli/datafile/ListRequest.h"
#include "model/records/FieldNames.h"
#include "model/rows/ClipboardText.h"
#include "model/rows/TextExport.h"
#include "platform/files/FileErrors.h"
#include "platform/files/UnflushedFiles.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace mirovane {

namespace {

constexpr std::string_view standardStream = "-";

/// A terminal obeys control characters; into a pipe or a file the text goes as it is.
void printText(COutput& out, std::string_view text) {
    if (out.terminalWidth() == 0)
        return out.print(text);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\t\r\n"), text.size());
        out.print(printable(text.substr(0, end)));
        out.print(text.substr(end, 1));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

/// All that can be read from it: a file, a pipe, a terminal.
std::optional<std::string> readAll(int descriptor) {
    constexpr std::size_t blockSize = 65536;
    std::string content;
    for (;;) {
        const std::size_t size = content.size();
        content.resize(size + blockSize);
        const ssize_t got = read(descriptor, content.data() + size, blockSize);
        content.resize(size + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            return content;
    }
}

std::optional<std::string> readTextFile(COutput& out, const std::string& path) {
    const bool standard = path == standardStream;
    const int descriptor = standard ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::optional<std::string> content;
    if (descriptor >= 0)
        content = readAll(descriptor);
    if (!content)
        out.diagnose(fileError("cannot read", standard ? "standard input" : path, errno).sentence);
    if (!standard && descriptor >= 0)
        close(descriptor);
    return content;
}

/// Every line that is not a device, up to as many as a screen takes.
void diagnoseProblems(COutput& out, const std::string& source, const ClipboardReading& reading) {
    constexpr std::size_t mostShown = 20;
    const std::size_t shown = std::min(mostShown, reading.problems.size());
    for (std::size_t i = 0; i < shown; ++i)
        out.diagnose(source + " line " + std::to_string(reading.problems[i].line) + ": " +
                     reading.problems[i].sentence);
    if (reading.problems.size() > shown)
        out.diagnose("and " + std::to_string(reading.problems.size() - shown) +
                     " more: nothing was imported");
    else
        out.diagnose("nothing was imported: mend the text and import it again");
}

/// What --misc and --position say about every device.
std::optional<std::string> place(CHardware& device, const Arguments& arguments) {
    if (arguments.has("--misc"))
        device.Type += DeviceType::discoveredOffset;
    const auto position = arguments.value("--position");
    return position ? setFieldValue(device, *findRecordField("Position"), *position) : std::nullopt;
}

std::vector<const CHardware*> allDevices(const Datafile::RecordList& records) {
    std::vector<const CHardware*> devices;
    for (const auto& record : records)
        if (record->isDevice())
            devices.push_back(record.get());
    return devices;
}

constexpr std::string_view copyDetails =
    "Without RECID all devices are copied. A line has 19 fields with a TAB between them: Modified, state\n"
    "(Active, Inactive), reminder, to do, type, name, IP address, user name, MAC address, to jack, comment,\n"
    "then \"Check\" and text of the /, \\, - and | line. `import` reads them back.\n";

ExitStatus runCopy(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const auto content = readDatafile(context.out, words[0]);
    if (!content)
        return ExitStatus::FileFailed;
    const ChosenDevices chosen =
        recIDs.value().empty() ? allDevices(content->records)
                               : chosenDevices(content->records, recIDs.value(), "cannot copy", words[0]);
    if (!chosen) {
        context.out.diagnose(chosen.error().sentence);
        return chosen.error().status;
    }
    for (const CHardware* device : chosen.value())
        printText(context.out, clipboardLine(*device, ClipboardForm::Bytes) + "\r\n");
    return ExitStatus::Done;
}

} // namespace

constinit const Command copyCommand{
    .name = "copy",
    .help = "print devices in the clipboard's text form",
    .usage = "FILE [RECID...]",
    .least = 1,
    .most = anyNumber,
    .details = copyDetails,
    .run = runCopy,
};

namespace {

constexpr std::array importOptions{
    OptionDefinition{"--misc", 0, "", "put them into the Discovered/Misc window instead of on the floor map"},
    OptionDefinition{"--position", 1, "X,Y", "where to put them on the floor map (usually 0,0)"},
};

constexpr std::string_view importDetails =
    "TEXTFILE holds a line per device as `copy` prints it; - is standard input. The fifth field, the type,\n"
    "must be there, every other may be empty. Dates are in the locale's form or as 2026-11-22 14:30. A line\n"
    "without a Modified gets the current time. All devices are added, or none when a line makes no sense.\n";

ExitStatus runImport(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    CHardware trial;
    if (const auto refusal = place(trial, context.arguments))
        return usageError(context, *refusal);
    const auto text = readTextFile(context.out, words[1]);
    if (!text)
        return ExitStatus::FileFailed;
    const std::string source = words[1] == standardStream ? "standard input" : words[1];
    if (text->starts_with("\xFF\xFE") || text->starts_with("\xFE\xFF")) {
        context.out.diagnose("cannot read " + source, "it is UTF-16 text; save it as UTF-8 with TABs");
        return ExitStatus::FileFailed;
    }
    const ClipboardReading reading = readClipboardText(*text, secondsNow());
    if (!reading.problems.empty()) {
        diagnoseProblems(context.out, source, reading);
        return ExitStatus::FileFailed;
    }
    if (reading.rows.empty()) {
        context.out.diagnose("nothing to import", source + " holds no device");
        return ExitStatus::No;
    }
    std::vector<std::int32_t> recIDs;
    const ExitStatus status = editDatafile(
        context.out, words[0], "Import devices", [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            recIDs.clear();
            for (const ClipboardReading::Row& row : reading.rows) {
                CHardware device = row.device;
                device.RecID = doc.nextRecordID();
                static_cast<void>(place(device, context.arguments));
                const CHardware* added = doc.append(std::move(device));
                if (!added)
                    return EditRefusal{"cannot add " + std::to_string(reading.rows.size()) +
                                           " device(s) to " + words[0] +
                                           ": there is no room for them, nothing was imported",
                                       ExitStatus::FileFailed};
                recIDs.push_back(added->RecID);
            }
            return std::nullopt;
        });
    if (status == ExitStatus::Done)
        printRecIDs(context.out, recIDs);
    return status;
}

} // namespace

constinit const Command importCommand{
    .name = "import",
    .help = "add the devices of a text in the clipboard's form",
    .usage = "FILE TEXTFILE [--misc] [--position X,Y]",
    .least = 2,
    .most = 2,
    .options = importOptions,
    .details = importDetails,
    .run = runImport,
};

namespace {

constexpr auto exportOptions = joined(exportFormatOptions, listRequestOptions);

constexpr std::string_view exportDetails =
    "OUT is replaced whole where it exists; - is standard output. A line per device: Modified, LS, Pri,\n"
    "Reminder, To Do, Device, Name, IP Address, Username, MAC Address, to Jack/#, Comment, / Text, \\Text,\n"
    "- Text, | Text. Lines end with CR LF. Line breaks in the comment become blanks, nothing is escaped.\n";

ExitStatus runExport(CommandContext& context) {
    const Arguments& arguments = context.arguments;
    const std::string& path = arguments.positionals[0];
    const std::string& target = arguments.positionals[1];
    const auto request = listRequest(arguments);
    if (!request)
        return usageError(context, request.error().sentence);
    const TextExportFormat format{arguments.value("--delimiter").value_or("\t"), arguments.has("--quote-all"),
                                  arguments.has("--quote-comment"), arguments.has("--header")};
    const auto content = readDatafile(context.out, path);
    if (!content)
        return ExitStatus::FileFailed;
    const std::string text = exportText(requestedRows(*content, request.value()), format);
    if (target == standardStream) {
        printText(context.out, text);
        return ExitStatus::Done;
    }
    CUnflushedFiles files;
    if (const auto error = writeExport(files, target, path, text, lockPatience)) {
        context.out.diagnose(error->sentence);
        return ExitStatus::FileFailed;
    }
    return ExitStatus::Done;
}

} // namespace

constinit const Command exportCommand{
    .name = "export",
    .help = "write the List View's rows into a text file",
    .usage = "FILE OUT [--delimiter TEXT] [--quote-all] [--quote-comment] [--header] [--floor] [--misc]"
             " [--type NAME]... [--sort COLUMN] [--descending]",
    .least = 2,
    .most = 2,
    .options = exportOptions,
    .details = exportDetails,
    .run = runExport,
};

} // namespace mirovane
