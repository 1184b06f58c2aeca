#include "ui/frame/FrameToolBar.h"

#include "ui/frame/ToolIcons.h"

#include <QMainWindow>
#include <QToolBar>
#include <QToolButton>

#include <array>
#include <string_view>

namespace mirovane {

namespace {

struct Button {
    std::string_view command; ///< empty: a gap
    ToolPicture picture = ToolPicture::New;
};

constexpr std::array buttons = {Button{"fileNew", ToolPicture::New}, Button{"fileOpen", ToolPicture::Open},
                                Button{"fileSave", ToolPicture::Save}, Button{""},
                                Button{"helpAbout", ToolPicture::About}};

constexpr QSize buttonSize(16, 15);

} // namespace

QToolBar* makeToolBar(QMainWindow& window, const CCommandActions& actions) {
    auto* toolbar = new QToolBar(QObject::tr("Toolbar"), &window);
    toolbar->setObjectName(QStringLiteral("toolbar"));
    toolbar->setIconSize(buttonSize);
    toolbar->setAllowedAreas(Qt::AllToolBarAreas);
    for (const Button& button : buttons) {
        if (button.command.empty()) {
            toolbar->addSeparator();
            continue;
        }
        QAction* action = actions.action(button.command);
        action->setIcon(toolIcon(button.picture));
        action->setIconVisibleInMenu(false);
        toolbar->addAction(action);
    }
    window.addToolBar(Qt::TopToolBarArea, toolbar);
    return toolbar;
}

} // namespace mirovane
