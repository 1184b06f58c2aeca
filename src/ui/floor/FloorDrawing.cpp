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
      photos_(CPhotoStore::Reading::Later),
      index_(document),
      frame_({document, display, index_, icons_, map_.tiles(), photos_}) {
    icons_.loadWithFallback(QDir::currentPath());
    connect(&map_, &CFloorMap::changed, this, [this] {
        extentStale_ = true;
        invalidateAll();
    });
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
    extentStale_ = extentStale_ || display_.ZoomPercent != painted_.ZoomPercent;
    painted_ = display_;
    frame_.invalidateAll();
}

QSize CFloorDrawing::extent() {
    if (extentStale())
        extent_ = scrollExtent(document_, map_.size(), icons_.sizes(), floorZoom(display_).ZoomPercent);
    extentStale_ = false;
    return extent_;
}

bool CFloorDrawing::extentStale() {
    compareSettings();
    return extentStale_;
}

QRect CFloorDrawing::draw(const FloorViewState& state, qreal devicePixelRatio) {
    compareSettings();
    frame_.setView(state, devicePixelRatio);
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

// ---- what the document tells

void CFloorDrawing::recordAdded(const CHardware& record) {
    extentStale_ = true;
    invalidate(record);
}

void CFloorDrawing::recordChanged(const CHardware& before, const CHardware& after) {
    if (before.Type == SpecialType::FloorMapRecord || after.Type == SpecialType::FloorMapRecord)
        loadMap(true);
    if (before.Position != after.Position || before.Type != after.Type)
        extentStale_ = true;
    if (before.onFloor() || after.onFloor())
        frame_.invalidate(after);
    Q_EMIT outdated();
}

void CFloorDrawing::flagsChanged(const CHardware& record) {
    if (record.onFloor())
        invalidate(record);
}

void CFloorDrawing::recordRemoved(const CHardware& record) {
    extentStale_ = true;
    frame_.forget(record);
    Q_EMIT outdated();
}

void CFloorDrawing::documentReplaced() {
    frame_.forgetAll();
    photos_.clear();
    extentStale_ = true;
    loadMap(!datafile_.reloading());
    Q_EMIT outdated();
}

void CFloorDrawing::loadMap(bool again) {
    map_.load(QString::fromStdString(displayText(floorMapOf(document_).mapPath)),
              QString::fromStdString(displayText(datafile_.path())), again);
}

} // namespace mirovane
