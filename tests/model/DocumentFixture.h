#pragma once

#include "model/Document.h"
#include "platform/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/LogLines.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirovane::test {

/// A document on real files in a folder of its own.
class DocumentFixture : public testing::Test {
protected:
    DocumentFixture() {
        log.addListener([this](const std::string& line, bool toStatusBar) {
            lastLine = withoutDate(line);
            lastToStatusBar = toStatusBar;
        });
    }

    /// A saved datafile with `devices` computers, open in `doc`.
    void makeFloor(int devices) {
        doc.newDatafile();
        for (int i = 1; i <= devices; ++i)
            doc.addDevice(DeviceType::Computer,
                          [i](CHardware& device) { device.Name = "pc-" + std::to_string(i); });
        ASSERT_FALSE(doc.saveAs(path));
    }

    std::string golden(const std::string& name) const {
        return readBytes(std::string(MIROVANE_SOURCE_DIR) + "/tests/golden/" + name);
    }

    TestFolder folder;
    FakeClock clock;
    PosixFiles files;
    CMessageLog log{clock};
    MemorySettingsStore store;
    CSettings settings{store};
    CMirovaneDoc doc{files, clock, log, settings, {"host", "user"}};
    CMirovaneDoc other{files, clock, log, settings, {"other", "someone"}};
    const std::string path = folder.file("floor.mv");
    std::string lastLine;
    bool lastToStatusBar = false;
};

} // namespace mirovane::test
