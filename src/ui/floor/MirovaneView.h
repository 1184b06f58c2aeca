#pragma once

#include "station/Station.h"
#include "ui/floor/FloorFrame.h"
#include "ui/floor/FloorIndex.h"
#include "ui/floor/FloorMap.h"
#include "ui/floor/IconSet.h"
#include "ui/floor/PhotoStore.h"

#include <QAbstractScrollArea>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>

namespace mirovane {

/// The floor: map and devices in a scrolling view. Watches the station's document and repaints by itself
/// whatever a change touches, once per turn of the event loop; `station.onRedraw` is taken over (what was
/// there is still called). Toggles of the document's display settings are noticed at the next repaint, so
/// `viewport()->update()` is all that a command owes after it changed one. The station outlives the view.
/// Main thread.
class CMirovaneView : public QAbstractScrollArea, private DocumentObserver {
    Q_OBJECT

public:
    /// Loads the icons: the project's own set and, over it, those of the current directory.
    explicit CMirovaneView(CStation& station, QWidget* parent = nullptr);
    ~CMirovaneView() override;

    IconSet& icons() { return icons_; }
    const FloorIndex& index() const { return index_; }
    const FloorViewState& state() const { return state_; }

    std::int32_t LabelFontHeight() const { return state_.LabelFontHeight; }
    void setLabelFontHeight(std::int32_t pixels);

    std::int32_t SelectedMarker() const { return state_.SelectedMarker; }
    void setSelectedMarker(std::int32_t recID);

    /// MapExtentWidth and MapExtentHeight.
    QSize mapExtent() const { return extent_; }

    /// Recomputes the extent, sets the scroll range to it and repaints. Happens by itself after every change
    /// of map, zoom and positions.
    void UpdateScrollExtent();

    /// Scaled coordinates of a point of the viewport.
    QPoint scaledPoint(QPoint windowPoint) const;

    /// Brings a floor device into view, with all its labels until the pointer moves. Does not select it.
    void showDevice(const CHardware& device);

    /// The next frame equals this one: nothing waits to be drawn or loaded.
    bool settled() const;

public Q_SLOTS:
    /// Something that the document does not tell about changed: icons, the state of labels.
    void redraw();

    /// Other devices may be held by Live Stat's job slots now. Between two calls the rings stay where they
    /// are, however often parts of the floor are drawn.
    void refreshRings();

    /// Reads the floor map again if its file changed.
    void reloadFloorMap();

Q_SIGNALS:
    /// The map of the datafile cannot be shown. `missing`: no such file; the sentence is for a message with a
    /// stop icon. Other problems are in the message log already.
    void floorMapFailed(const QString& sentence, bool missing);

    /// The Location Marker under the pointer is another one, or none (0).
    void selectedMarkerChanged(std::int32_t recID);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void flagsChanged(const CHardware& record) override;
    void recordRemoved(const CHardware& record) override;
    void orderChanged() override;
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override;

    void setUpWidget();
    void watchStation();
    void showReminders();
    bool showsRing(std::int32_t recID);
    void scheduleFlush();
    void flush();
    void syncState();
    void syncSettings();
    void updateScrollRange();
    void blit(QPainter& painter, const QRegion& region);
    void paintHint(QPainter& painter);
    bool nothingOnFloor() const;
    void prepareSlice();
    void hover(QPoint windowPoint, bool synthetic);
    void clearHover();
    void select(QPoint windowPoint, bool additive);
    void loadMap(bool again);

    CStation& station_;
    CMirovaneDoc& document_;
    IconSet icons_;
    FloorMap map_;
    PhotoStore photos_;
    FloorIndex index_;
    FloorFrame frame_;
    FloorViewState state_;
    DisplaySettings painted_; ///< display settings of the last frame
    QSize extent_;
    QString datafile_;
    std::optional<QPoint> pointer_;                ///< where it rests over the floor, in window coordinates
    std::unordered_map<std::int32_t, bool> rings_; ///< as looked up since the last refresh
    bool extentStale_ = true;
    bool flushPending_ = false;
    QTimer idle_;
};

} // namespace mirovane
