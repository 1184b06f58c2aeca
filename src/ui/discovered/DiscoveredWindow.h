#pragma once

#include "model/discovered/DiscoveredEdits.h"
#include "ui/discovered/DiscoveredView.h"

#include <QLabel>
#include <QMenu>
#include <QWidget>

#include <functional>
#include <vector>

namespace mirovane {

/// "Discovered/Misc Device - Mirovane": the devices that are known but not on the floor. While it is hidden
/// it costs nothing but a mark that its order is stale. Main thread.
class CDiscoveredWindow : public QWidget {
    Q_OBJECT

public:
    /// All of it outlives the window.
    struct Parts {
        CStation& station;
        StationDialogs& dialogs;
        CSettings& settings;
        CMessageLog& log;
        CIconSet& icons;
        std::function<MapPoint()> floorMiddle; ///< where a device goes that is moved to the floor
        std::function<void()> find;
        std::function<void()> findNext;
        std::function<void()> findReminderDue;
        std::function<void()> properties; ///< of the devices that are selected here
    };

    /// `owner` is the window with the floor. This one stays above it: devices are dragged between the two,
    /// and a press on the floor must not bury where they are dragged to.
    CDiscoveredWindow(Parts parts, QWidget* owner);

    CDiscoveredView& view() { return *view_; }

    /// Where no place was stored, the window opens at the right edge of this one: what is dragged from here
    /// to its floor, or from there, has the other window in sight.
    void openBeside(const QWidget& window);

    /// Shows the window, restores it when it is minimised and brings it to the top.
    void present();

    /// The same, and the device comes into view.
    void show(const CHardware& device, bool flash);
    using QWidget::show;

    /// Devices that were dragged from here and dropped on the floor; nobody is asked.
    void dropOnFloor(const std::vector<DeviceKey>& devices, MapPoint corner);

    void moveToFloor();
    void deleteSelected();
    void changeType(std::int32_t type);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void layOut();
    void fillMenus();
    QAction* add(QMenu& menu, const QString& text, const char* name, const QKeySequence& key,
                 std::function<void()> run);
    void fillTypes(QMenu& menu);
    void showStatus();
    std::vector<DeviceKey> selected(CSelection::Scope scope) const;
    bool carryOut(DiscoveredEdit edit);

    Parts parts_;
    CDiscoveredView* view_;
    QLabel* status_;
    QMenu* edit_;
    std::vector<QAction*> onSelection_; ///< enabled while a device is selected here
};

} // namespace mirovane
