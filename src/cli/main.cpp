#include "cli/Cli.h"
#include "platform/process/DescriptorLimit.h"
#include "platform/process/StandardDescriptors.h"

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <string>
#include <vector>

namespace {

/// Dates in the user's own form, everything else in UTF-8: results are UTF-8 whatever the locale, and Qt
/// complains on standard error about a locale that is not.
void takeLocale() {
    std::setlocale(LC_ALL, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        setenv("LC_ALL", "C.UTF-8", 1);
        std::setlocale(LC_ALL, "");
    }
    std::setlocale(LC_NUMERIC, "C");
}

} // namespace

int main(int argc, char** argv) {
    mirovane::fillStandardDescriptors();
    mirovane::raiseDescriptorLimit();
    takeLocale();
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away is a failed write, not a death with work in hand
    std::signal(SIGCHLD, SIG_DFL); // a parent's "ignore" would hide how our own children end
    const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    mirovane::COutput out(stdout, stderr);
    return mirovane::runCli(words, out);
}
