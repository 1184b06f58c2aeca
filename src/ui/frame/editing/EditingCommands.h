#pragma once

#include "ui/frame/editing/AddCommands.h"
#include "ui/frame/editing/EditCommands.h"
#include "ui/frame/editing/FloorMapCommand.h"
#include "ui/frame/editing/SelectCommands.h"
#include "ui/frame/editing/UndoCommands.h"

namespace mirovane {

/// All commands by which the user lays out the floor. Main thread; what the parts name outlives the object.
class CEditingCommands {
public:
    explicit CEditingCommands(const EditingParts& parts)
        : add_(parts), select_(parts), edit_(parts), floorMap_(parts), undo_(parts) {}

    void connectTo(CCommandActions& actions) {
        add_.connectTo(actions);
        select_.connectTo(actions);
        edit_.connectTo(actions);
        floorMap_.connectTo(actions);
        undo_.connectTo(actions);
    }

    CFloorMapCommand& floorMap() { return floorMap_; }

private:
    CAddCommands add_;
    CSelectCommands select_;
    CEditCommands edit_;
    CFloorMapCommand floorMap_;
    CUndoCommands undo_;
};

} // namespace mirovane
