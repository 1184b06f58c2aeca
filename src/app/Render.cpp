#include "app/Render.h"

#include "app/OfflineFloor.h"
#include "ui/floor/paint/FloorFrame.h"

#include <QSaveFile>

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

/// An empty floor still gives a picture.
constexpr QSize emptyFloorSize(1280, 800);

/// What of the floor the picture shows; false when that is too much.
bool chooseView(const DrawOptions& options, COfflineFloor& floor) {
    FloorView& view = floor.state().view;
    const QSize rest = floor.extent() - QSize(options.scroll.x(), options.scroll.y());
    view.origin = options.scroll;
    view.client = options.size.value_or(rest.isEmpty() ? emptyFloorSize : rest);
    view.ratio = options.devicePixelRatio;
    const double width = std::ceil(view.client.width() * view.ratio);
    const double height = std::ceil(view.client.height() * view.ratio);
    if (std::max(width, height) <= largestRenderSide && width * height <= mostRenderPixels)
        return true;
    complain(QStringLiteral("%1 has %2 x %3 pixels at this zoom, too many for a picture: choose a part with "
                            "--size and --scroll")
                 .arg(options.size ? QStringLiteral("the window") : QStringLiteral("the whole floor"))
                 .arg(width, 0, 'f', 0)
                 .arg(height, 0, 'f', 0));
    return false;
}

/// The old picture stays when the new one cannot be written.
bool writePicture(const QImage& picture, const QString& path) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.commit())
        return true;
    complain(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return false;
}

int render(const DrawOptions& options, COfflineFloor& floor) {
    if (!chooseView(options, floor))
        return UsageError;
    CFloorFrame frame(floor.sources());
    frame.setState(floor.state());
    return writePicture(frame.image(), options.output) ? Written : FileProblem;
}

} // namespace

int runRender(const QStringList& arguments) {
    return runOffline(QStringLiteral("--render"), parseRenderOptions(arguments), renderUsage(), render);
}

} // namespace mirovane
