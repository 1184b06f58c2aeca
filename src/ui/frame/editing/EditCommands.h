#pragma once

#include "ui/floor/MirovaneView.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/editing/EditRunner.h"

namespace mirovane {

/// The Edit menu: what changes, removes or carries away the selected devices. Main thread; all references
/// outlive the object.
class CEditCommands {
public:
    explicit CEditCommands(const EditingParts& parts);

    void connectTo(CCommandActions& actions);

    void cut();
    void copy();
    void paste();

    /// Asks first.
    void deleteSelected();
    void moveToMisc();

    /// Of every selected device, on the floor or not.
    void resetLiveStatus();
    void arrange(Arrangement arrangement);

private:
    void remove();
    std::vector<DeviceKey> selectedKeys(CSelection::Scope scope) const;

    EditingParts parts_;
    CEditRunner runner_;
};

} // namespace mirovane
