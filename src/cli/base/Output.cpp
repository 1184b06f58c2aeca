#include "cli/base/Output.h"

#include "cli/base/TextTable.h"
#include "model/records/Text.h"
#include "platform/process/ServiceManager.h"

#include <cerrno>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace mirovane {

namespace {

std::string journalPrefix(LinePriority priority) {
    return "<" + std::to_string(static_cast<int>(priority)) + ">";
}

} // namespace

COutput::COutput(std::FILE* results, std::FILE* diagnostics)
    : results_(results),
      diagnostics_(diagnostics),
      resultsToJournal_(goesToJournal(fileno(results))),
      diagnosticsToJournal_(goesToJournal(fileno(diagnostics))) {}

void COutput::print(std::string_view text) {
    if (failed())
        return;
    if (std::fwrite(text.data(), 1, text.size(), results_) != text.size())
        failure_ = errno;
}

void COutput::printLine(std::string_view text) {
    print(text);
    print("\n");
}

void COutput::printLine(LinePriority priority, std::string_view text) {
    printLine((resultsToJournal_ ? journalPrefix(priority) : std::string()) + std::string(text));
}

bool COutput::flush() {
    if (!failed() && std::fflush(results_) != 0)
        failure_ = errno;
    return !failed();
}

bool COutput::readerGone() const {
    return failure_ == EPIPE;
}

void COutput::diagnose(std::string_view what, std::string_view why) {
    diagnose(std::string(what) + ": " + std::string(why));
}

void COutput::diagnose(std::string_view sentence) {
    diagnose(LinePriority::Error, sentence);
}

void COutput::warn(std::string_view what, std::string_view why) {
    diagnose(LinePriority::Warning, std::string(what) + ": " + std::string(why));
}

void COutput::diagnose(LinePriority priority, std::string_view sentence) {
    showProgress({});
    flush(); // on a terminal the diagnostics stand after the results they are about
    const std::string line = (diagnosticsToJournal_ ? journalPrefix(priority) : std::string()) +
                             "mirovanectl: " + printable(sentence) + "\n";
    std::fwrite(line.data(), 1, line.size(), diagnostics_);
    std::fflush(diagnostics_);
}

namespace {

/// 0 for what is not a terminal.
int columnsOf(std::FILE* file) {
    const int descriptor = fileno(file);
    if (descriptor < 0 || isatty(descriptor) == 0)
        return 0;
    constexpr int usual = 80;
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return usual;
}

} // namespace

int COutput::terminalWidth() const {
    return columnsOf(results_);
}

bool COutput::showsProgress() const {
    return columnsOf(diagnostics_) > 0;
}

void COutput::showProgress(std::string_view line) {
    const int columns = columnsOf(diagnostics_);
    if (columns == 0 || (line.empty() && !progressShown_))
        return;
    // A line that fills the terminal would wrap and could not be taken away any more.
    const std::string shown = clipped(line, static_cast<std::size_t>(columns - 1));
    const std::string text = "\r" + shown + "\x1B[K";
    std::fwrite(text.data(), 1, text.size(), diagnostics_);
    std::fflush(diagnostics_);
    progressShown_ = !line.empty();
}

std::string printable(std::string_view bytes) {
    std::string text = displayText(bytes);
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool c1 =
            byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
        if (c1)
            ++at;
        clean += byte < 0x20 || byte == 0x7F || c1 ? ' ' : text[at];
    }
    return clean;
}

} // namespace mirovane
