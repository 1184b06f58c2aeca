#include "model/Document.h"

#include "model/Criteria.h"
#include "platform/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

class DocumentTest : public testing::Test {
protected:
    test::TestFolder folder;
    test::FakeClock clock;
    PosixFiles files;
    CMessageLog log{clock};
    MemorySettingsStore store;
    CSettings settings{store};
    CMirovaneDoc doc{files, clock, log, settings, {"host", "user"}};

    std::string lastLine() const {
        const std::string& line = log.lines().back();
        return line.substr(line.find(" - ") + 3);
    }
};

TEST_F(DocumentTest, NewDatafileSavedAndReadAgainIsTheSame) {
    doc.newDatafile();
    EXPECT_EQ(doc.size(), 159U);
    ASSERT_FALSE(doc.saveAs(folder.file("floor.mv")));
    EXPECT_EQ(lastLine(), "Saved changes to data file");
    const std::string bytes = test::readBytes(folder.file("floor.mv"));
    EXPECT_EQ(bytes.substr(0, 21), std::string("\x9F\0\xFF\xFF\x01\0\x09\0CHardware\xD8\x07\0\0", 21));

    CMirovaneDoc other(files, clock, log, settings, {"other", "someone"});
    ASSERT_FALSE(other.open(folder.file("floor.mv")));
    ASSERT_EQ(other.size(), doc.size());
    for (std::size_t i = 0; i < doc.size(); ++i)
        EXPECT_TRUE(sameStored(other.at(i), doc.at(i))) << i;
    EXPECT_FALSE(other.pendingChanges());
}

} // namespace

} // namespace mirovane
