#include "app/DisplayGuard.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace mirovane {

namespace {

const char* reason() {
    const bool chosen = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    const bool display = qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!chosen && !display)
        return "there is no display (neither DISPLAY nor WAYLAND_DISPLAY is set)";
    return chosen ? "the window system named by QT_QPA_PLATFORM cannot be used"
                  : "the display cannot be opened";
}

void onMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtFatalMsg) {
        // The platform plugin's own complaint, such as the name of the display that it did not reach.
        std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
        return;
    }
    std::fprintf(
        stderr,
        "mirovane: no window can be opened: %s.\n"
        "Start it from a desktop session, or use \"mirovanectl station DATAFILE --live-stat\" to watch the\n"
        "devices without a display, and \"mirovane --render OUT.png DATAFILE\" to draw the floor.\n",
        reason());
    std::fflush(stderr);
    ::_exit(2); // the half-made application object cannot be destroyed
}

} // namespace

CDisplayGuard::CDisplayGuard() {
    qInstallMessageHandler(onMessage);
}

CDisplayGuard::~CDisplayGuard() {
    qInstallMessageHandler(nullptr);
}

} // namespace mirovane
