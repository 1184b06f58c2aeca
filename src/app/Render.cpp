#include "app/Render.h"

#include "app/RenderOptions.h"
#include "model/Dates.h"
#include "model/Document.h"
#include "model/Text.h"
#include "platform/PosixFiles.h"
#include "ui/floor/FloorFrame.h"
#include "ui/floor/FloorIndex.h"
#include "ui/floor/FloorMap.h"
#include "ui/floor/FontBands.h"
#include "ui/floor/HoverRule.h"
#include "ui/floor/IconSet.h"
#include "ui/floor/PhotoStore.h"

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
class RenderedFloor {
public:
    explicit RenderedFloor(const RenderOptions& options) : options_(options) {
        settings_.initialise();
        icons_.loadWithFallback(QDir::currentPath());
        QObject::connect(&map_, &FloorMap::failed, &map_,
                         [](const QString& sentence) { complain(sentence); });
    }

    /// The exit status so far.
    int open() {
        const std::string path = QFile::encodeName(options_.datafile).toStdString();
        if (const auto error = document_.open(path)) {
            complain(QString::fromStdString(displayText(error->sentence)));
            return FileProblem;
        }
        applySettings();
        markDueReminders();
        map_.loadNow(QString::fromStdString(displayText(document_.floorMapPath())),
                     QString::fromStdString(displayText(document_.path())));
        return applySelection() ? Written : UsageError;
    }

    bool chooseSize() {
        const QSize extent =
            scrollExtent(document_, map_.size(), icons_.sizes(), floorZoom(document_.display()).ZoomPercent);
        const QSize rest = extent - QSize(options_.scroll.x(), options_.scroll.y());
        state_.client = options_.size.value_or(rest.isEmpty() ? emptyFloorSize : rest);
        const bool fits = std::max(state_.client.width(), state_.client.height()) <= largestRenderSide &&
                          qint64{state_.client.width()} * state_.client.height() <= mostRenderPixels;
        if (!fits)
            complain(QStringLiteral(
                         "the whole floor has %1 x %2 pixels at this zoom, too many for a picture: choose a "
                         "part with --size and --scroll")
                         .arg(rest.width())
                         .arg(rest.height()));
        return fits;
    }

    QImage frame() {
        state_.scroll = options_.scroll;
        state_.LabelFontHeight = startLabelFontHeight(document_.display());
        FloorFrame frame({document_, index_, icons_, map_.tiles(), photos_});
        frame.setView(state_, 1);
        return frame.image();
    }

private:
    void applySettings() {
        DisplaySettings& display = document_.display();
        display.ZoomPercent = options_.ZoomPercent;
        display.ZoomDevicesPercent = options_.ZoomDevicesPercent;
        const auto named = [this](std::string_view name) {
            return std::ranges::find(options_.shown, name) != options_.shown.end();
        };
        for (const std::string_view name : labelToggles)
            display.*displayToggle(name) = false;
        if (std::ranges::any_of(lineToggles, named)) {
            for (const std::string_view name : lineToggles)
                display.*displayToggle(name) = false;
        }
        for (const std::string& name : options_.shown)
            display.*displayToggle(name) = true;
    }

    /// A picture shows what the window shows while it blinks: due reminders are seen.
    void markDueReminders() {
        const DateTime now = localDateTime(document_.now());
        for (std::size_t i = 0; i < document_.size(); ++i) {
            const CHardware& record = document_.at(i);
            document_.setReminderDue(record, record.isDevice() && isReminderDue(record, now));
        }
        state_.labels.ReminderPhase = true;
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
            document_.setSelected(*device, true);
            if (device->Type == DeviceType::LocationMarker)
                state_.SelectedMarker = recID;
        }
        if (!options_.hovered)
            return true;
        const CHardware* device = deviceOnFloor(*options_.hovered);
        if (!device)
            return false;
        showOnly(document_, index_, device);
        state_.LastPoint = toScaled(device->Position, options_.ZoomPercent);
        if (state_.SelectedMarker == 0)
            state_.SelectedMarker =
                hoverAt(document_, index_, icons_.sizes(), state_.LastPoint, true).SelectedMarker;
        return true;
    }

    const RenderOptions& options_;
    SystemClock clock_;
    PosixFiles files_;
    CMessageLog log_{clock_};
    MemorySettingsStore store_;
    CSettings settings_{store_};
    CMirovaneDoc document_{files_, clock_, log_, settings_, {}};
    FloorIndex index_{document_};
    IconSet icons_;
    FloorMap map_;
    PhotoStore photos_{PhotoStore::Reading::Now};
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
    RenderedFloor floor(options.value());
    if (const int status = floor.open())
        return status;
    if (!floor.chooseSize())
        return UsageError;
    return writePicture(floor.frame(), options.value().output) ? Written : FileProblem;
}

} // namespace mirovane
