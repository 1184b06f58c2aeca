#pragma once

#include "model/properties/FollowedDevices.h"
#include "ui/properties/PropertiesDialog.h"
#include "ui/properties/PropertiesPrompts.h"

#include <QObject>
#include <QPointer>
#include <QSize>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace mirovane {

/// The Properties command, from whatever window: opens the dialogs for the devices, one group after the
/// other, asks about values that another device has, and makes the change. The dialogs do not stop the
/// station: it goes on reading and saving while they are open. Belongs to the main window. Main thread.
class CPropertiesEditor final : public QObject, private StationObserver {
    Q_OBJECT

public:
    struct Parts {
        CStation& station;
        const Clock& clock;
        PropertiesPrompts& prompts;
        std::function<QSize()> mapSize; ///< of the floor map in pixels
    };

    /// All references outlive the object.
    CPropertiesEditor(Parts parts, QObject* parent);
    ~CPropertiesEditor() override;

    /// Where "Next" and "Previous" lead, in order.
    using Neighbours = std::vector<DeviceKey>;

    /// For the devices selected on the floor; with none, what the floor as a whole is. `window` is where the
    /// command was given.
    void openForFloor(QWidget& window);

    /// For these devices of whichever window. `neighbours` empty: those in the same place as the device, on
    /// the floor or in the Discovered/Misc window, in list order. While a dialog is open it comes to the top
    /// instead.
    void open(const std::vector<const CHardware*>& devices, QWidget& window, Neighbours neighbours = {});

Q_SIGNALS:
    /// The user wants to see this device.
    void showDevice(std::int32_t recID);

    /// The area of this location marker is to be marked on the floor from now on.
    void markArea(std::int32_t recID);

private:
    /// A group of a mixed selection whose dialog is still to come.
    struct Waiting {
        Waiting(const CMirovaneDoc& document, const PropertiesSet& chosen)
            : set(chosen), devices(document, chosen.devices) {}

        PropertiesSet set;
        CFollowedDevices devices;
    };

    // StationObserver
    void floorOpened() override;

    void openNext();
    CPropertiesDialog* makeDialog(PropertiesSet set);
    void decided(CPropertiesDialog& dialog, CPropertiesDialog::Decision decision);
    bool apply(CPropertiesDialog& dialog);
    bool mayHaveTwin(CPropertiesDialog& dialog, const PropertiesEdit& edit);
    void close(CPropertiesDialog& dialog);
    void moveOn(CPropertiesDialog& dialog, int by);
    const CHardware* neighbour(const CPropertiesForm& form, int by) const;
    Neighbours neighboursOf(const CHardware& device) const;
    void openTest(CPropertiesDialog& dialog, std::int32_t type, int row);
    void finish();

    Parts parts_;
    QPointer<QWidget> window_;
    QPointer<CPropertiesDialog> dialog_;
    std::deque<Waiting> waiting_;
    std::unique_ptr<CFollowedDevices> neighbours_;
    bool bringsOwnNeighbours_ = false;
};

} // namespace mirovane
