#pragma once

#include "model/datafile/DatafileLink.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/map/FloorMap.h"
#include "ui/floor/paint/FloorFrame.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/PhotoStore.h"

#include <QImage>
#include <QObject>
#include <QRect>
#include <QSize>

namespace mirovane {

/// The picture of a document's floor, and everything it is drawn from: icons, map, photos, the index of what
/// lies where. Observes the document and draws again only what a change touches. The view that owns it shows
/// the picture; settings of the display may change at any time and are compared at each drawing. Main thread;
/// document and settings outlive it.
class CFloorDrawing final : public QObject, private DocumentObserver {
    Q_OBJECT

public:
    /// Loads the icons: the project's own set and, over it, those of the current directory.
    CFloorDrawing(const CMirovaneDoc& document, const CDatafileLink& datafile,
                  const DisplaySettings& display);
    ~CFloorDrawing() override;

    CIconSet& icons() { return icons_; }
    const CIconSet& icons() const { return icons_; }
    FloorSources sources() { return {document_, display_, index_, icons_, map_.tiles(), photos_}; }
    const CFloorIndex& index() const { return index_; }

    /// Neither a map nor a device is on the floor.
    bool empty() const;

    /// MapExtentWidth and MapExtentHeight at this zoom. Walks the whole list when something moved.
    QSize extent(std::int32_t ZoomPercent);
    bool extentStale(std::int32_t ZoomPercent) const { return ZoomPercent != extentZoom_; }

    /// Of the floor map at 100 %; 0 x 0 without one.
    QSize mapSize() const { return map_.size(); }

    /// Brings the picture up to date with the document and this state. Returns what differs from the picture
    /// before, logical pixels. The caller names what another state changes; only another FloorView is noticed
    /// here.
    QRect draw(const FloorViewState& state);

    /// As drawn last, canvas pixels.
    const QImage& image() { return frame_.image(); }

    /// The next picture equals this one: nothing waits to be drawn or loaded.
    bool settled() const { return !frame_.stale() && !map_.loading(); }

    void invalidate(const CHardware& device);
    void invalidateAll();

    /// What is selected or hovered, and the box.
    void invalidateTop();

    /// Reads the icons again, which a site may have replaced.
    void reloadIcons();

    /// Reads the floor map again if its file changed.
    void reloadMap() { loadMap(true); }

Q_SIGNALS:
    /// Something waits to be drawn, or the extent has changed.
    void outdated();

    /// See CFloorMap::reading.
    void mapReading(bool reading);

    /// See CFloorMap::failed.
    void mapFailed(const QString& sentence, bool missing);

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void flagsChanged(const CHardware& record) override;
    void recordRemoved(const CHardware& record) override;
    void orderChanged() override { invalidateAll(); }
    void documentReplaced() override;

    void loadMap(bool again);
    void compareSettings();

    const CDatafileLink& datafile_;
    const CMirovaneDoc& document_;
    const DisplaySettings& display_;
    DisplaySettings painted_; ///< the toggles of the last picture
    QString iconFolder_;      ///< where a site's own icons are: the current directory of the start
    CIconSet icons_;
    CFloorMap map_;
    CPhotoStore photos_;
    CFloorIndex index_;
    CFloorFrame frame_;
    QSize extent_;
    std::int32_t extentZoom_ = 0; ///< that the extent was worked out for; 0: something moved since
};

} // namespace mirovane
