#pragma once

#include "app/DrawOptions.h"
#include "model/Document.h"
#include "model/Selection.h"
#include "model/datafile/DatafileLink.h"
#include "platform/Clock.h"
#include "platform/files/PosixFiles.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/geometry/ZoomSteps.h"
#include "ui/floor/map/FloorMap.h"
#include "ui/floor/paint/FloorPainter.h"
#include "ui/floor/paint/FloorViewState.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/PhotoStore.h"

#include <functional>

namespace mirovane {

/// The programs that draw a floor without a window end with these.
enum ExitStatus { Written = 0, UsageError = 2, FileProblem = 3 };

void complain(const QString& sentence);

/// A document of its own, which forgets its settings and writes nothing, and what a frame of it is drawn
/// from.
class COfflineFloor {
public:
    explicit COfflineFloor(const DrawOptions& options);

    /// The exit status so far; what went wrong is on standard error.
    int open();

    FloorSources sources() { return {document_, display_, index_, icons_, map_.tiles(), photos_}; }

    /// Of the whole floor at the zoom of the options.
    QSize extent() const;

    FloorViewState& state() { return state_; }
    ZoomState zoom() const { return zoomStateOf(display_, state_.view.LabelFontHeight); }

private:
    void applySettings();
    void markDueReminders();
    const CHardware* deviceOnFloor(std::int32_t recID);
    bool applySelection();

    const DrawOptions& options_;
    CSystemClock clock_;
    CPosixFiles files_;
    CMessageLog log_{clock_};
    CMemorySettingsStore store_;
    CSettings settings_{store_};
    CMirovaneDoc document_{clock_, log_, {}};
    CDatafileLink link_{document_, files_, log_};
    DisplaySettings display_;
    CSelection selection_{document_};
    CFloorIndex index_{document_};
    CIconSet icons_;
    CFloorMap map_;
    CPhotoStore photos_{CPhotoStore::Reading::Now};
    FloorViewState state_;
};

/// What a program that draws without a window does between its words and its picture: complains of bad words,
/// helps, spares the datafile, opens it, and draws. Returns the exit status. `name` is "--print".
int runOffline(const QString& name, const Result<DrawOptions, QString>& options, const QString& usage,
               const std::function<int(const DrawOptions&, COfflineFloor&)>& draw);

} // namespace mirovane
