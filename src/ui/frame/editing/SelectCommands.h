#pragma once

#include "model/floor/SelectionCommands.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/editing/EditRunner.h"

namespace mirovane {

/// The Select and the Hide menu. Main thread; all references outlive the object.
class CSelectCommands {
public:
    explicit CSelectCommands(const EditingParts& parts);

    void connectTo(CCommandActions& actions);

    /// With Ctrl held the selection grows.
    void select(SelectionCommand command);

private:
    void connectSelect(CCommandActions& actions);
    void connectHide(CCommandActions& actions);
    template <typename Change>
    void hide(Change change);
    bool hasMap() const;

    EditingParts parts_;
};

} // namespace mirovane
