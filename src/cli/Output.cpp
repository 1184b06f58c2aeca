#include "cli/Output.h"

#include "model/Text.h"

#include <cerrno>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace mirovane {

void Output::print(std::string_view text) {
    if (failed())
        return;
    if (std::fwrite(text.data(), 1, text.size(), results_) != text.size())
        failure_ = errno;
}

void Output::printLine(std::string_view text) {
    print(text);
    print("\n");
}

bool Output::flush() {
    if (!failed() && std::fflush(results_) != 0)
        failure_ = errno;
    return !failed();
}

bool Output::readerGone() const {
    return failure_ == EPIPE;
}

void Output::diagnose(std::string_view what, std::string_view why) {
    diagnose(std::string(what) + ": " + std::string(why));
}

void Output::diagnose(std::string_view sentence) {
    flush(); // on a terminal the diagnostics stand after the results they are about
    const std::string line = "mirovanectl: " + printable(sentence) + "\n";
    std::fwrite(line.data(), 1, line.size(), diagnostics_);
    std::fflush(diagnostics_);
}

int Output::terminalWidth() const {
    const int descriptor = fileno(results_);
    if (descriptor < 0 || isatty(descriptor) == 0)
        return 0;
    constexpr int usual = 80;
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return usual;
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
