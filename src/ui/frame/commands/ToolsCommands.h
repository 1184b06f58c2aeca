#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

#include <QPointer>
#include <QWidget>

#include <functional>

namespace mirovane {

class CLiveStatOptionsWindow;

/// The Tools menu: Live Stat, Live Discover and the users' photos.
class CToolsCommands {
public:
    struct Parts {
        QWidget* window; ///< in front of which windows open
        CSettings& settings;
        const Clock& clock;
        std::function<void()> repaintFloor;
        std::function<void()> reloadIcons; ///< settings were saved: the site may have other icons
    };

    /// All references outlive the object.
    CToolsCommands(CStation& station, FrameDialogs& dialogs, Parts parts);

    void connectTo(CCommandActions& actions);

    void choosePhotos();

    /// Shows the options window, which goes on by itself, in front of the window that asks for it: that one
    /// hands the keyboard to it and has it back afterwards.
    void openLiveStatOptions(QWidget* asking = nullptr);

    /// The session ends or the datafile is saved: a rule that is being typed counts.
    void storeTyping();

private:
    void storePhotoFolder(const std::string& folder);

    CStation& station_;
    FrameDialogs& dialogs_;
    Parts parts_;
    QPointer<CLiveStatOptionsWindow> options_;
};

} // namespace mirovane
