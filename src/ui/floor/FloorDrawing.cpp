#include "ui/floor/FloorDrawing.h"

#include "model/FloorMap.h"
#include "model/records/Text.h"
#include "ui/floor/geometry/FloorGeometry.h"

#include <QDir>

namespace mirovane {

CFloorDrawing::CFloorDrawing(const CMirovaneDoc& document, const CDatafileLink& datafile,
                             const DisplaySettings& display)
    : datafile_(datafile),
      document_(document),
      display_(display),
      painted_(display),
      iconFolder_(QDir::currentPath()),
      photos_(CPhotoStore::Reading::Later),
      index_(document),
      frame_({document, display, index_, icons_, map_.tiles(), photos_}) {
    icons_.loadWithFallback(iconFolder_);
    connect(&map_, &CFloorMap::changed, this, [this] {
        extentZoom_ = 0;
        invalidateAll();
    });
    connect(&map_, &CFloorMap::reading, this, &CFloorDrawing::mapReading);
    connect(&map_, &CFloorMap::failed, this, &CFloorDrawing::mapFailed);
    connect(&photos_, &CPhotoStore::arrived, this, &CFloorDrawing::invalidateAll);
    document_.addObserver(*this);
    documentReplaced();
}

CFloorDrawing::~CFloorDrawing() {
    document_.removeObserver(*this);
}

bool CFloorDrawing::empty() const {
    return index_.size() == 0 && floorMapOf(document_).mapPath.empty();
}

// ---- the picture

void CFloorDrawing::compareSettings() {
    if (display_ == painted_)
        return;
    painted_ = display_;
    frame_.invalidateAll();
}

QSize CFloorDrawing::extent(std::int32_t ZoomPercent) {
    if (extentStale(ZoomPercent))
        extent_ = scrollExtent(document_, map_.size(), icons_.sizes(), ZoomPercent);
    extentZoom_ = ZoomPercent;
    return extent_;
}

QRect CFloorDrawing::draw(const FloorViewState& state) {
    compareSettings();
    frame_.setState(state);
    QRect redrawn;
    frame_.image(&redrawn);
    return redrawn;
}

void CFloorDrawing::invalidate(const CHardware& device) {
    frame_.invalidate(device);
    Q_EMIT outdated();
}

void CFloorDrawing::invalidateAll() {
    frame_.invalidateAll();
    Q_EMIT outdated();
}

void CFloorDrawing::invalidateTop() {
    frame_.invalidateTop();
    Q_EMIT outdated();
}

void CFloorDrawing::reloadIcons() {
    icons_.LoadIcons(iconFolder_);
    extentZoom_ = 0;
    invalidateAll();
}

// ---- what the document tells

void CFloorDrawing::recordAdded(const CHardware& record) {
    extentZoom_ = 0;
    invalidate(record);
}

void CFloorDrawing::recordChanged(const CHardware& before, const CHardware& after) {
    if (before.Type == SpecialType::FloorMapRecord || after.Type == SpecialType::FloorMapRecord)
        loadMap(true);
    if (before.Position != after.Position || before.Type != after.Type)
        extentZoom_ = 0;
    if (before.onFloor() || after.onFloor())
        frame_.invalidate(after);
    Q_EMIT outdated();
}

void CFloorDrawing::flagsChanged(const CHardware& record) {
    if (record.onFloor())
        invalidate(record);
}

void CFloorDrawing::recordRemoved(const CHardware& record) {
    extentZoom_ = 0;
    frame_.forget(record);
    Q_EMIT outdated();
}

void CFloorDrawing::documentReplaced() {
    frame_.forgetAll();
    photos_.clear();
    extentZoom_ = 0;
    loadMap(!datafile_.reloading());
    Q_EMIT outdated();
}

void CFloorDrawing::loadMap(bool again) {
    const FloorMapValues named = floorMapOf(document_);
    const QString datafile = QString::fromStdString(displayText(datafile_.path()));
    photos_.setFolder({QString::fromStdString(displayText(named.photoFolder)), datafile});
    map_.load(QString::fromStdString(displayText(named.mapPath)), datafile, again);
}

} // namespace mirovane
