#include "app/CommandLine.h"
#include "app/DisplayGuard.h"
#include "app/EndSignals.h"
#include "app/Print.h"
#include "app/Render.h"
#include "platform/process/DescriptorLimit.h"
#include "platform/process/StandardDescriptors.h"
#include "platform/process/Terminal.h"
#include "ui/frame/Desktop.h"
#include "ui/handover/Handover.h"
#include "ui/widgets/ReadableColours.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

using namespace mirovane;

QStringList argumentList(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QFile::decodeName(argv[i]);
    return arguments;
}

/// What needs no window: done before the window system is touched, so that it works without a display.
std::optional<int> runWithoutWindow(const QStringList& arguments) {
    if (arguments.contains(QStringLiteral("--render")))
        return runRender(arguments);
    if (arguments.contains(QStringLiteral("--print")))
        return runPrint(arguments);
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        std::fputs(usageText().toUtf8().constData(), stdout);
        return 0;
    }
    if (arguments.contains(QStringLiteral("--version"))) {
        std::puts("mirovane " MIROVANE_VERSION);
        return 0;
    }
    return std::nullopt;
}

std::unique_ptr<QApplication> makeApplication(int& argc, char** argv) {
    const CDisplayGuard guard;
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setApplicationName(QStringLiteral("mirovane"));
    QApplication::setApplicationDisplayName(QString());
    QApplication::setApplicationVersion(QStringLiteral(MIROVANE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("mirovane"));
    QApplication::setPalette(readableColours(QApplication::palette()));
    return application;
}

/// The exit status where a window that is open already has taken the request.
std::optional<int> runInOpenWindow(const CommandLine& line) {
    const QString datafile =
        line.datafile.isEmpty() ? QString() : QFileInfo(line.datafile).canonicalFilePath();
    if (line.datafile.isEmpty() ? line.find.isEmpty() : datafile.isEmpty())
        return std::nullopt; // a new floor, or a file that is not there
    const auto answer = handOver(handoverFolder(), {datafile, line.find});
    if (answer == HandoverAnswer::NotFound)
        std::fprintf(stderr, "mirovane: no device fits \"%s\"\n", line.find.toLocal8Bit().constData());
    return answer ? std::optional(answer == HandoverAnswer::NotFound ? 1 : 0) : std::nullopt;
}

int runWindow(const CommandLine& line) {
    if (const auto status = runInOpenWindow(line))
        return *status;
    CDesktop desktop({QFile::encodeName(line.configFolder).toStdString(), QStringLiteral(MIROVANE_VERSION)});
    std::optional<int> ended;
    const CEndSignals signals([&desktop, &ended] {
        ended = desktop.endSession();
        QApplication::exit(*ended); // also of the event loop of a box that is open
    });
    // The session may yet go on: nothing but saving. When it does end, the event loop ends and the station
    // leaves.
    QObject::connect(
        qApp, &QGuiApplication::commitDataRequest, &desktop.frame(), [&desktop] { desktop.saveForSession(); },
        Qt::DirectConnection);
    desktop.start(QFile::encodeName(line.datafile).toStdString());
    const CHandoverServer server(
        handoverFolder(), [&desktop](const HandoverRequest& request) { return desktop.comeUp(request); });
    if (!line.find.isEmpty())
        desktop.comeUp({{}, line.find});
    return ended ? *ended : QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    fillStandardDescriptors();
    raiseDescriptorLimit();
    std::signal(SIGCHLD, SIG_DFL);                 // a parent's "ignore" would hide how our own children end
    if (argc > 1 && argv[1] == terminalRunnerFlag) // in a terminal that External Applications opened
        return runInTerminal({argv + 2, argv + argc});
    if (const auto status = runWithoutWindow(argumentList(argc, argv)))
        return *status;
    const auto application = makeApplication(argc, argv);
    const auto line = parseCommandLine(QApplication::arguments().mid(1));
    if (!line) {
        std::fprintf(stderr, "mirovane: %s\nTry \"mirovane --help\".\n", line.error().toUtf8().constData());
        return 2;
    }
    return runWindow(line.value());
}
