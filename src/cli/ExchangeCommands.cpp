#include "cli/Commands.h"
#include "cli/Datafiles.h"
#include "cli/ListRequest.h"
#include "model/ClipboardText.h"
#include "model/FieldNames.h"
#include "model/TextExport.h"
#include "platform/FileErrors.h"
#include "platform/UnflushedFiles.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <set>
#include <unistd.h>

namespace mirovane {

namespace {

constexpr std::string_view standardStream = "-";

/// A terminal obeys control characters; into a pipe or a file the text goes as it is.
void printText(Output& out, std::string_view text) {
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

std::optional<std::string> readTextFile(Output& out, const std::string& path) {
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

/// Every line that makes no device, up to as many as a screen takes.
void diagnoseProblems(Output& out, const std::string& source, const ClipboardReading& reading) {
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

std::vector<const CHardware*> devicesOf(const Datafile::Content& content,
                                        const std::set<std::int32_t>& wanted) {
    std::vector<const CHardware*> devices;
    for (const auto& record : content.records) {
        if (record->isDevice() && (wanted.empty() || wanted.contains(record->RecID)))
            devices.push_back(record.get());
    }
    return devices;
}

} // namespace

ExitStatus runCopy(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const auto content = readDatafile(context.out, words[0]);
    if (!content)
        return ExitStatus::FileFailed;
    std::set<std::int32_t> missing(recIDs.value().begin(), recIDs.value().end());
    const auto devices = devicesOf(*content, missing);
    for (const CHardware* device : devices)
        missing.erase(device->RecID);
    if (!missing.empty()) {
        context.out.diagnose("no device has the RecID " + std::to_string(*missing.begin()) +
                             ": nothing was copied");
        return ExitStatus::No;
    }
    for (const CHardware* device : devices)
        printText(context.out, clipboardLine(*device, ClipboardForm::Bytes) + "\r\n");
    return ExitStatus::Done;
}

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
    const ExitStatus status =
        editDatafile(context.out, words[0], [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
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
    UnflushedFiles files;
    if (const auto error = writeExport(files, target, path, text, lockPatience)) {
        context.out.diagnose(error->sentence);
        return ExitStatus::FileFailed;
    }
    return ExitStatus::Done;
}

} // namespace mirovane
