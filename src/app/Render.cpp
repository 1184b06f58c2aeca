#include "app/Render.h"

#include "app/RenderOptions.h"
#include "model/Document.h"
#include "model/FloorMap.h"
#include "model/datafile/DatafileLink.h"
#include "model/records/Dates.h"
#include "model/records/Text.h"
#include "platform/files/PosixFiles.h"
#include "ui/floor/FloorHover.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/geometry/FontBands.h"
#include "ui/floor/map/FloorMap.h"
#include "ui/floor/paint/FloorFrame.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/PhotoStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSaveFile>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace mirovane {

namespace {

enum ExitStatus { Written = 0, UsageError = 2, FileProblem = 3 };

/// An empty floor still gives a picture.
constexpr QSize emptyFloorSize(1280, 800);

constexpr std::string_view lineToggles[] = {"PropertiesSlashDraw", "PropertiesBackslashDraw",
                                            "PropertiesHorzDraw", "PropertiesVertDraw"};
constexpr std::string_view labelToggles[] = {
    "PropertiesComputer", "PropertiesIPAddress", "PropertiesUsername", "PropertiesMACAddress",
    "PropertiesJack",     "PropertiesComment",   "PropertiesSlash",    "PropertiesBackslash",
    "PropertiesHorz",     "PropertiesVert"};

void complain(const QString& sentence) {
    std::fprintf(stderr, "mirovane: %s\n", sentence.toLocal8Bit().constData());
}

/// Remarks of the window system mean nothing to who asked for a picture.
void dropRemarks(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        complain(text);
}

/// A document of its own, which forgets its settings and writes nothing.
class CRenderedFloor {
public:
    explicit CRenderedFloor(const RenderOptions& options) : options_(options) {
        settings_.initialise();
        display_.readAll(settings_);
        display_.readAtOpen(settings_);
        icons_.loadWithFallback(QDir::currentPath());
        QObject::connect(&map_, &CFloorMap::failed, &map_,
                         [](const QString& sentence) { complain(sentence); });
    }

    /// The exit status so far.
    int open() {
        const std::string path = QFile::encodeName(options_.datafile).toStdString();
        if (const auto error = link_.open(path)) {
            complain(QString::fromStdString(displayText(error->sentence)));
            return FileProblem;
        }
        applySettings();
        markDueReminders();
        const FloorMapValues named = floorMapOf(document_);
        const QString datafile = QString::fromStdString(displayText(link_.path()));
        photos_.setFolder({QString::fromStdString(displayText(named.photoFolder)), datafile});
        map_.loadNow(QString::fromStdString(displayText(named.mapPath)), datafile);
        return applySelection() ? Written : UsageError;
    }

    bool chooseSize() {
        const QSize extent = scrollExtent(document_, map_.size(), icons_.sizes(), options_.ZoomPercent);
        const QSize rest = extent - QSize(options_.scroll.x(), options_.scroll.y());
        state_.view.client = options_.size.value_or(rest.isEmpty() ? emptyFloorSize : rest);
        const bool fits =
            std::max(state_.view.client.width(), state_.view.client.height()) <= largestRenderSide &&
            qint64{state_.view.client.width()} * state_.view.client.height() <= mostRenderPixels;
        if (!fits)
            complain(QStringLiteral(
                         "the whole floor has %1 x %2 pixels at this zoom, too many for a picture: choose a "
                         "part with --size and --scroll")
                         .arg(rest.width())
                         .arg(rest.height()));
        return fits;
    }

    QImage frame() {
        CFloorFrame frame({document_, display_, index_, icons_, map_.tiles(), photos_});
        frame.setState(state_);
        return frame.image();
    }

private:
    void applySettings() {
        display_.ZoomPercent = options_.ZoomPercent;
        display_.ZoomDevicesPercent = options_.ZoomDevicesPercent;
        state_.view.zoom = floorZoom(display_);
        state_.view.LabelFontHeight = startLabelFontHeight(display_);
        state_.view.origin = options_.scroll;
        const auto named = [this](std::string_view name) {
            return std::ranges::find(options_.shown, name) != options_.shown.end();
        };
        for (const std::string_view name : labelToggles)
            display_.*displayToggle(name) = false;
        if (std::ranges::any_of(lineToggles, named))
            for (const std::string_view name : lineToggles)
                display_.*displayToggle(name) = false;
        for (const std::string& name : options_.shown)
            display_.*displayToggle(name) = true;
    }

    /// A picture shows what the window shows while it blinks: due reminders are seen.
    void markDueReminders() {
        const DateTime now = localDateTime(document_.now());
        for (std::size_t i = 0; i < document_.size(); ++i) {
            const CHardware& record = document_.at(i);
            document_.setReminderDue(record, record.isDevice() && isReminderDue(record, now));
        }
        state_.ReminderPhase = true;
    }

    const CHardware* deviceOnFloor(std::int32_t recID) {
        const CHardware* device = document_.findDevice(recID);
        if (device && device->onFloor())
            return device;
        complain(QStringLiteral("no device on the floor has the record ID %1").arg(recID));
        return nullptr;
    }

    bool applySelection() {
        for (const std::int32_t recID : options_.selected) {
            const CHardware* device = deviceOnFloor(recID);
            if (!device)
                return false;
            selection_.add(*device);
            if (device->Type == DeviceType::LocationMarker)
                state_.SelectedMarker = recID;
        }
        if (!options_.hovered)
            return true;
        const CHardware* device = deviceOnFloor(*options_.hovered);
        if (!device)
            return false;
        CFloorHover hover(selection_, index_, icons_.sizes(), display_, state_.view);
        hover.showOnly(device);
        if (state_.SelectedMarker == 0)
            state_.SelectedMarker =
                hover.at(toScaled(device->Position, options_.ZoomPercent), true).SelectedMarker;
        return true;
    }

    const RenderOptions& options_;
    CSystemClock clock_;
    CPosixFiles files_;
    CMessageLog log_{clock_};
    CMemorySettingsStore store_;
    CSettings settings_{store_};
    CMirovaneDoc document_{clock_, log_, {}};
    CDatafileLink link_{document_, files_, log_};
    DisplaySettings display_;
    CSelection selection_{document_};
    CFloorIndex index_{document_};
    CIconSet icons_;
    CFloorMap map_;
    CPhotoStore photos_{CPhotoStore::Reading::Now};
    FloorViewState state_;
};

/// True when the picture would be written over the datafile.
bool sameFile(const QString& picture, const QString& datafile) {
    const QString canonical = QFileInfo(picture).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(datafile).canonicalFilePath();
}

/// The old picture stays when the new one cannot be written.
bool writePicture(const QImage& picture, const QString& path) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.commit())
        return true;
    complain(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return false;
}

} // namespace

int runRender(const QStringList& arguments) {
    const auto options = parseRenderOptions(arguments);
    if (!options) {
        complain(options.error() + QStringLiteral("\nTry \"mirovane --render --help\"."));
        return UsageError;
    }
    if (options.value().help) {
        std::fputs(renderUsage().toLocal8Bit().constData(), stdout);
        return Written;
    }
    if (sameFile(options.value().output, options.value().datafile)) {
        complain(QStringLiteral("%1 is the datafile itself: give the picture another name")
                     .arg(options.value().output));
        return UsageError;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(dropRemarks);
    char name[] = "mirovane";
    char* argv[] = {name, nullptr};
    int argc = 1;
    const QGuiApplication application(argc, argv);
    CRenderedFloor floor(options.value());
    if (const int status = floor.open())
        return status;
    if (!floor.chooseSize())
        return UsageError;
    return writePicture(floor.frame(), options.value().output) ? Written : FileProblem;
}

} // namespace mirovane
