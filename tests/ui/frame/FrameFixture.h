#pragma once

#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/files/PosixFiles.h"
#include "station/Station.h"
#include "tests/support/FakeLauncher.h"
#include "tests/support/FakeTime.h"
#include "tests/support/InstantNetwork.h"
#include "tests/support/ScriptedProbes.h"
#include "tests/ui/frame/ScriptedFrameDialogs.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/base/RecentFiles.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace mirovane::test {

/// A station on real files in a folder of its own, with a user who answers by script.
class FrameFixture : public testing::Test {
protected:
    QTemporaryDir folder;
    FakeClock clock;
    FakeTimers timers{clock};
    CPosixFiles diskFiles;
    CMemorySettingsStore store;
    CSettings settings{store};
    CMessageLog log{clock};
    ScriptedFrameDialogs dialogs;
    ScriptedProbes probes; ///< nobody answers
    FakeLauncher launcher;
    InstantNetwork network;
    CRecentFiles recent{store};
    std::unique_ptr<CStation> station;

    void SetUp() override {
        settings.initialise();
        settings.write("LSAutoStart", 0);
        station = std::make_unique<CStation>(StationServices{diskFiles,
                                                             clock,
                                                             timers,
                                                             settings,
                                                             log,
                                                             dialogs,
                                                             probes,
                                                             {"host", "user"},
                                                             true,
                                                             nullptr,
                                                             nullptr,
                                                             &network,
                                                             inFolder("state")});
    }

    std::string inFolder(const char* name) const {
        return folder.filePath(QLatin1String(name)).toStdString();
    }

    /// To change past the door for edits, as background work does.
    CMirovaneDoc& document() { return const_cast<CMirovaneDoc&>(station->document()); }

    void addComputer() { document().addDevice(DeviceType::Computer); }

    bool logged(const std::string& part) const { return log.text().find(part) != std::string::npos; }
};

/// The main window on the screen, with a new datafile.
class ShownFrame : public FrameFixture {
protected:
    CMirovaneView* floor = nullptr;
    std::unique_ptr<CMainFrame> frame;

    void SetUp() override {
        FrameFixture::SetUp();
        floor = new CMirovaneView(*station, log);
        frame = std::make_unique<CMainFrame>(
            CMainFrame::Services{*station, dialogs, recent, launcher, settings, log, clock}, floor);
        frame->files().newFile();
        frame->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(frame.get()));
    }
};

} // namespace mirovane::test
