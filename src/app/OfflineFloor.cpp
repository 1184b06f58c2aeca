#include "app/OfflineFloor.h"

#include "model/FloorMap.h"
#include "model/records/Dates.h"
#include "model/records/Text.h"
#include "ui/floor/FloorHover.h"
#include "ui/floor/geometry/FontBands.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace mirovane {

namespace {

constexpr std::string_view lineToggles[] = {"PropertiesSlashDraw", "PropertiesBackslashDraw",
                                            "PropertiesHorzDraw", "PropertiesVertDraw"};
constexpr std::string_view labelToggles[] = {
    "PropertiesComputer", "PropertiesIPAddress", "PropertiesUsername", "PropertiesMACAddress",
    "PropertiesJack",     "PropertiesComment",   "PropertiesSlash",    "PropertiesBackslash",
    "PropertiesHorz",     "PropertiesVert"};

bool sameFile(const QString& output, const QString& datafile) {
    const QString canonical = QFileInfo(output).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(datafile).canonicalFilePath();
}

/// Remarks of the window system mean nothing to who asked for a picture.
void dropRemarks(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        complain(text);
}

/// True when the output would be written over the datafile; said on standard error.
bool wouldOverwrite(const DrawOptions& options) {
    if (!sameFile(options.output, options.datafile))
        return false;
    complain(QStringLiteral("%1 is the datafile itself: give the picture another name").arg(options.output));
    return true;
}

} // namespace

void complain(const QString& sentence) {
    std::fprintf(stderr, "mirovane: %s\n", sentence.toLocal8Bit().constData());
}

COfflineFloor::COfflineFloor(const DrawOptions& options) : options_(options) {
    settings_.initialise();
    display_.readAll(settings_);
    display_.readAtOpen(settings_);
    icons_.loadWithFallback(QDir::currentPath());
    QObject::connect(&map_, &CFloorMap::failed, &map_, [](const QString& sentence) { complain(sentence); });
}

int COfflineFloor::open() {
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
    if (!options_.hideMap)
        map_.loadNow(QString::fromStdString(displayText(named.mapPath)), datafile);
    return applySelection() ? Written : UsageError;
}

QSize COfflineFloor::extent() const {
    return scrollExtent(document_, map_.size(), icons_.sizes(), options_.ZoomPercent);
}

void COfflineFloor::applySettings() {
    display_.ZoomPercent = options_.ZoomPercent;
    display_.ZoomDevicesPercent = options_.ZoomDevicesPercent;
    display_.ZoomFontScale = options_.ZoomFontScale;
    state_.view.zoom = floorZoom(display_);
    state_.view.LabelFontHeight = startLabelFontHeight(display_);
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
    for (const std::int32_t type : options_.hidden)
        display_.VisibleTypes &= ~(1 << (type - 1));
}

/// A picture shows what the window shows while it blinks: due reminders are seen.
void COfflineFloor::markDueReminders() {
    const DateTime now = localDateTime(document_.now());
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        document_.setReminderDue(record, record.isDevice() && isReminderDue(record, now));
    }
    state_.ReminderPhase = true;
}

const CHardware* COfflineFloor::deviceOnFloor(std::int32_t recID) {
    const CHardware* device = document_.findDevice(recID);
    if (device && device->onFloor())
        return device;
    complain(QStringLiteral("no device on the floor has the record ID %1").arg(recID));
    return nullptr;
}

bool COfflineFloor::applySelection() {
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

int runOffline(const QString& name, const Result<DrawOptions, QString>& options, const QString& usage,
               const std::function<int(const DrawOptions&, COfflineFloor&)>& draw) {
    if (!options) {
        complain(options.error() + QStringLiteral("\nTry \"mirovane %1 --help\".").arg(name));
        return UsageError;
    }
    if (options.value().help) {
        std::fputs(usage.toLocal8Bit().constData(), stdout);
        return Written;
    }
    if (wouldOverwrite(options.value()))
        return UsageError;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(dropRemarks);
    char program[] = "mirovane";
    char* argv[] = {program, nullptr};
    int argc = 1;
    const QGuiApplication application(argc, argv);
    COfflineFloor floor(options.value());
    if (const int status = floor.open())
        return status;
    return draw(options.value(), floor);
}

} // namespace mirovane
