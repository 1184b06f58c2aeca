#pragma once

#include "platform/AbandonableCalls.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/editing/EditRunner.h"

#include <QObject>

namespace mirovane {

/// "Floor Map...": the picture of the floor is chosen. Its path is shared with colleagues, so it is read
/// before it is stored, off the main thread, and the old map stays where that fails. Main thread.
class CFloorMapCommand : public QObject {
    Q_OBJECT

public:
    explicit CFloorMapCommand(const EditingParts& parts);

    void connectTo(CCommandActions& actions);

    void choose();

    /// The map that the datafile names is not there: says where it was looked for and offers to choose
    /// another. `sentence` says which is missing.
    void offerAnother(const std::string& sentence);

    /// A chosen picture is being read.
    bool reading() const { return reading_; }

private:
    void read(const std::string& path);
    void take(const std::string& path, const std::string& datafile, const std::string& problem);

    EditingParts parts_;
    CEditRunner runner_;
    bool reading_ = false;
    CAbandonableCalls reads_; ///< of a share that hangs, which must not hold the program's end up either
};

} // namespace mirovane
