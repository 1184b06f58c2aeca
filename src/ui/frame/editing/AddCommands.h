#pragma once

#include "ui/floor/MirovaneView.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/editing/EditRunner.h"

namespace mirovane {

/// "Add Computer" and its like, and "Duplicate": new devices on the floor. Main thread; all references
/// outlive the object.
class CAddCommands {
public:
    explicit CAddCommands(const EditingParts& parts);

    void connectTo(CCommandActions& actions);

    void add(std::int32_t type);
    void duplicate();

private:
    EditingParts parts_;
    CEditRunner runner_;
};

} // namespace mirovane
