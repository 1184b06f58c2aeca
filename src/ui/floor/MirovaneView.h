#pragma once

#include "station/Station.h"
#include "ui/floor/FloorDrawing.h"
#include "ui/floor/FloorInput.h"
#include "ui/floor/LiveStatRings.h"

#include <QAbstractScrollArea>

#include <cstdint>

namespace mirovane {

/// The floor: map and devices in a scrolling view. Shows the drawing; what mouse and keys do on it is the
/// input's business. It repaints by itself whatever a change touches, once per turn of the
/// event loop. A toggle of the display settings is noticed at the next repaint, so `viewport()->update()` is
/// all that a command owes after it changed one. The station outlives the view. Main thread.
class CMirovaneView : public QAbstractScrollArea, private DocumentObserver, private StationObserver {
    Q_OBJECT

public:
    /// Both outlive the view.
    CMirovaneView(CStation& station, CMessageLog& log, QWidget* parent = nullptr);
    ~CMirovaneView() override;

    CFloorDrawing& drawing() { return drawing_; }
    const FloorViewState& state() const { return state_; }
    CFloorInput& input() { return input_; }

    std::int32_t SelectedMarker() const { return state_.SelectedMarker; }
    void setSelectedMarker(std::int32_t recID);

    /// What a new device is placed by.
    FloorWindow window() const;

    /// A click takes the marks of the last search off the floor.
    void endFind();

    /// Scaled coordinates of a point of the viewport.
    QPoint scaledPoint(QPoint windowPoint) const;

    /// The zoom of the display settings has changed. Labels have this height from now on, and `origin`
    /// (scaled coordinates) comes to the window's corner, as far as the floor reaches.
    void setZoom(std::int32_t LabelFontHeight, QPoint origin);

    /// Brings a floor device into view, with all its labels until the pointer moves. Does not select it.
    void showDevice(const CHardware& device);

    /// The same, always in the middle of the window.
    void centreOn(const CHardware& device);

    /// The icon of a floor device, in window coordinates.
    QRect iconRect(const CHardware& device) const;

    /// What the last search left for the floor to show.
    void setFind(const FindState& find);

    /// The next frame equals this one: nothing waits to be drawn or loaded.
    bool settled() const;

public Q_SLOTS:
    /// Other devices may be held by Live Stat's job slots now. Between two calls the rings stay where they
    /// are, however often parts of the floor are drawn.
    void refreshRings();

    /// Reads the floor map again if its file changed.
    void reloadFloorMap() { drawing_.reloadMap(); }

Q_SIGNALS:
    /// The map of the datafile cannot be shown. `missing`: no such file; the sentence is for a message with a
    /// stop icon. Other problems are in the message log already.
    void floorMapFailed(const QString& sentence, bool missing);

    /// Another Location Marker is under the pointer, or none (0).
    void selectedMarkerChanged(std::int32_t recID);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // DocumentObserver
    void recordRemoved(const CHardware& record) override;
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override;

    // StationObserver
    void redrawNeeded() override { refreshRings(); }
    void indicatorsChanged() override { refreshRings(); }
    void remindersChanged() override;
    void deviceTracked(std::int32_t recID) override;

    const DisplaySettings& display() const { return station_.display(); }
    void scheduleFlush();
    void flush();
    QRect redraw();
    void UpdateScrollExtent();
    void paintLines(QPainter& painter) const;

    CStation& station_;
    CMessageLog& log_;
    FloorViewState state_; ///< of the frame that was drawn last
    CFloorDrawing drawing_;
    CFloorInput input_;
    CLiveStatRings rings_;
    QString datafile_;
    bool flushPending_ = false;
};

} // namespace mirovane
