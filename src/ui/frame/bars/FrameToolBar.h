#pragma once

#include "model/Document.h"
#include "model/Settings.h"
#include "ui/frame/base/CommandActions.h"

#include <QToolBar>

class QMainWindow;

namespace mirovane {

class CMarkerSelector;
class CQuickFindField;

/// The toolbar of the main window: docked at the top at first, movable to any edge. Where it is and whether
/// it is shown is kept in the user's settings. Owned by the window.
class CFrameToolBar final : public QToolBar {
    Q_OBJECT

public:
    CFrameToolBar(QMainWindow& window, const CCommandActions& actions, const CMirovaneDoc& document,
                  CSettings& settings);

    CMarkerSelector& markers() { return *markers_; }
    CQuickFindField& quickFind() { return *quickFind_; }

private:
    void addButtons(const CCommandActions& actions);
    void addQuickFind(const CCommandActions& actions);
    void keepPlace();

    QMainWindow& window_;
    CSettings& settings_;
    CMarkerSelector* markers_;
    CQuickFindField* quickFind_;
};

} // namespace mirovane
