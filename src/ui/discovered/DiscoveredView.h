#pragma once

#include "model/discovered/DiscoveredGrid.h"
#include "model/discovered/DiscoveredOrder.h"
#include "station/Station.h"
#include "ui/floor/paint/IconSet.h"

#include <QAbstractScrollArea>

#include <optional>
#include <vector>

namespace mirovane {

/// The devices of Discovered/Misc as a scrolling grid of icons with short labels, selected by mouse and by
/// keys. A paint visits what is in view and nothing else; the order is made anew only after devices came,
/// went or changed places, so 10,000 devices scroll as a dozen do. The station and the icons outlive it. Main
/// thread.
class CDiscoveredView : public QAbstractScrollArea, private DocumentObserver {
    Q_OBJECT

public:
    CDiscoveredView(CStation& station, CIconSet& icons, QWidget* parent = nullptr);
    ~CDiscoveredView() override;

    DiscoveredSorting sorting() const { return sorting_; }
    void setSorting(DiscoveredSorting sorting);

    /// ScrollToSelection: the next paint brings the last selected device into view.
    void revealSelected();

    /// The same at once. Where the device is now, in window coordinates; empty for one that is not here.
    QRect reveal(const CHardware& device);

    /// In the order that is seen.
    const std::vector<const CHardware*>& devices() const;

    void selectAll();

Q_SIGNALS:
    /// Devices came, went, or were selected or deselected.
    void changed();

    /// A double-click on a device, which is selected by then.
    void propertiesWanted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    /// What the mouse does between press and release.
    enum class Gesture {
        None,
        Pressed,             ///< on a device; a movement drags what is selected
        CtrlClickOnSelected, ///< the release deselects it
        Band,
    };

    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void flagsChanged(const CHardware& record) override;
    void recordRemoved(const CHardware& record) override;
    void orderChanged() override { outdate(); }
    void documentReplaced() override { outdate(); }

    void outdate();
    void repaintSoon();
    DiscoveredGrid grid() const;
    void updateScrollRange();
    void scrollToSelected();
    std::optional<int> hit(QPoint contentPoint) const;
    std::optional<int> placeOf(const CHardware& device) const;
    QPoint contentPoint(QPoint windowPoint) const;
    void paintCell(QPainter& painter, int place) const;
    int paintIcon(QPainter& painter, const CHardware& device, QPoint corner) const;
    void selectOnly(std::optional<int> place);
    void selectRange(int from, int to);
    void selectBand();
    void startDrag();
    void go(DiscoveredGrid::Step step, Qt::KeyboardModifiers keys);

    CStation& station_;
    CIconSet& icons_;
    DiscoveredSorting sorting_ = DiscoveredSorting::AsListed;
    mutable std::vector<const CHardware*> devices_;
    mutable bool stale_ = true;
    bool ScrollToSelection_ = false;
    bool repaintPending_ = false;
    Gesture gesture_ = Gesture::None;
    QPoint pressedAt_; ///< in the scrolled contents, as is the band
    QRect band_;
    std::vector<DeviceKey> beforeBand_; ///< what was selected when a band with Ctrl began
    int current_ = 0;                   ///< the device that the keys start from
    int anchor_ = 0;                    ///< where a selection with Shift began
};

} // namespace mirovane
