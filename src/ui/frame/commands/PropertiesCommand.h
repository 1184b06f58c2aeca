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
        std::function<void()> endMarking; ///< of an area: the dialog of a Location Marker begins it anew
    };

    /// All references outlive the object.
    explicit CPropertiesCommand(const Parts& parts);

    void connectTo(CCommandActions& actions);

    /// For the devices selected on the floor.
    void run();

    /// For these devices in front of the window where they were chosen, such as the Discovered/Misc window.
    void run(const std::vector<const CHardware*>& devices, QWidget& window,
             CPropertiesEditor::Neighbours neighbours = {});

private:
    void endMarking(const std::vector<const CHardware*>& devices) const;

    const CSelection& selection_;
    QWidget& window_;
    std::function<void()> endMarking_;
    CWidgetPropertiesPrompts prompts_;
    CPropertiesEditor editor_;
};

} // namespace mirovane
