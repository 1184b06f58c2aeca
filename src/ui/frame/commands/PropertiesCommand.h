#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/properties/PropertiesEditor.h"

namespace mirovane {

/// Edit, Properties, and the same command in the windows beside the floor. Main thread.
class CPropertiesCommand {
public:
    struct Parts {
        CStation& station;
        const Clock& clock;
        QWidget& window;
        std::function<QSize()> mapSize;
        std::function<void(std::int32_t recID)> showDevice;
        std::function<void(std::int32_t recID)> markArea;
    };

    /// All references outlive the object.
    explicit CPropertiesCommand(const Parts& parts);

    void connectTo(CCommandActions& actions);

    /// For the devices selected on the floor.
    void run() { editor_.openForFloor(window_); }

    /// For these devices in front of the window where they were chosen, such as the Discovered/Misc window.
    void run(const std::vector<const CHardware*>& devices, QWidget& window,
             CPropertiesEditor::Neighbours neighbours = {}) {
        editor_.open(devices, window, std::move(neighbours));
    }

private:
    QWidget& window_;
    CWidgetPropertiesPrompts prompts_;
    CPropertiesEditor editor_;
};

} // namespace mirovane
