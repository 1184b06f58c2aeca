#include "ui/frame/bars/FrameToolBar.h"

#include "ui/find/QuickFindPopup.h"
#include "ui/frame/bars/MarkerSelector.h"
#include "ui/frame/bars/ToolIcons.h"

#include <QMainWindow>

#include <array>
#include <string_view>

namespace mirovane {

namespace {

struct Button {
    std::string_view command; ///< empty: a gap
    ToolPicture picture = ToolPicture::New;
};

constexpr std::array buttons = {Button{"fileNew", ToolPicture::New},
                                Button{"fileOpen", ToolPicture::Open},
                                Button{"fileSave", ToolPicture::Save},
                                Button{""},
                                Button{"editCut", ToolPicture::Cut},
                                Button{"editCopy", ToolPicture::Copy},
                                Button{"editPaste", ToolPicture::Paste},
                                Button{""},
                                Button{"filePrint", ToolPicture::Print},
                                Button{""},
                                Button{"helpAbout", ToolPicture::About},
                                Button{"helpContext", ToolPicture::Help},
                                Button{""}};

constexpr QSize buttonSize(16, 15);

constexpr std::string_view areaSetting = "ToolbarArea";

constexpr Qt::ToolBarArea areaOf(std::int32_t stored) {
    for (const auto area : {Qt::LeftToolBarArea, Qt::RightToolBarArea, Qt::BottomToolBarArea})
        if (stored == area)
            return area;
    return Qt::TopToolBarArea;
}

} // namespace

CFrameToolBar::CFrameToolBar(QMainWindow& window, const CCommandActions& actions,
                             const CMirovaneDoc& document, CSettings& settings)
    : QToolBar(tr("Toolbar"), &window),
      window_(window),
      settings_(settings),
      markers_(new CMarkerSelector(document)),
      quickFind_(new CQuickFindField) {
    setObjectName(QStringLiteral("toolbar"));
    setIconSize(buttonSize);
    setAllowedAreas(Qt::AllToolBarAreas);
    addButtons(actions);
    addWidget(markers_);
    addQuickFind(actions);
    window.addToolBar(areaOf(settings_.read(areaSetting, Qt::TopToolBarArea)), this);
    connect(this, &QToolBar::topLevelChanged, this, &CFrameToolBar::keepPlace);
    connect(this, &QToolBar::orientationChanged, this, &CFrameToolBar::keepPlace);
    connect(this, &QToolBar::visibilityChanged, this, &CFrameToolBar::keepPlace);
}

void CFrameToolBar::addButtons(const CCommandActions& actions) {
    for (const Button& button : buttons) {
        if (button.command.empty()) {
            addSeparator();
            continue;
        }
        QAction* action = actions.action(button.command);
        if (!action)
            continue;
        action->setIcon(toolIcon(button.picture));
        action->setIconVisibleInMenu(false);
        addAction(action);
    }
}

/// As much as its command it is of use while there are devices.
void CFrameToolBar::addQuickFind(const CCommandActions& actions) {
    addSeparator();
    addWidget(quickFind_);
    if (const QAction* command = actions.action("editQuickFind")) {
        quickFind_->setStatusTip(command->statusTip());
        connect(command, &QAction::enabledChanged, quickFind_, &QWidget::setEnabled);
    }
}

void CFrameToolBar::keepPlace() {
    const Qt::ToolBarArea area = window_.toolBarArea(this);
    if (!isFloating() && area != Qt::NoToolBarArea && area != settings_.read(areaSetting, Qt::TopToolBarArea))
        settings_.write(areaSetting, area);
}

} // namespace mirovane
