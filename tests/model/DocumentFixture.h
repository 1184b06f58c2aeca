#pragma once

#include "model/datafile/DatafileLink.h"
#include "platform/files/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/LogLines.h"
#include "tests/support/Paths.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirovane::test {

/// Two documents on real files in a folder of its own.
class DocumentFixture : public testing::Test, private LogListener {
protected:
    DocumentFixture() { log.addListener(*this); }

    /// A saved datafile with `devices` computers, open in `doc`.
    void makeFloor(int devices) {
        link.newDatafile();
        for (int i = 1; i <= devices; ++i)
            doc.addDevice(DeviceType::Computer,
                          [i](CHardware& device) { device.Name = "pc-" + std::to_string(i); });
        ASSERT_FALSE(link.saveAs(path).failed());
    }

    std::string golden(const std::string& name) const {
        return readBytes(sourceFile("tests/golden/" + name));
    }

    TestFolder folder;
    FakeClock clock;
    CPosixFiles files;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"host", "user"}};
    CDatafileLink link{doc, files, log};
    CMirovaneDoc other{clock, log, {"other", "someone"}};
    CDatafileLink otherLink{other, files, log};
    const std::string path = folder.file("floor.mv");
    std::string lastLine;
    bool lastToStatusBar = false;

    void lineLogged(const LogLine& line) override {
        lastLine = line.text;
        lastToStatusBar = line.toStatusBar;
    }
};

} // namespace mirovane::test
