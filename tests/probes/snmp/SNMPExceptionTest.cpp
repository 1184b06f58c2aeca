#include "probes/snmp/SNMPException.h"

#include "tests/probes/snmp/RaisedBy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

TEST(SNMPExceptionTest, SaysWhatWhereAndWhy) {
    const auto raised = test::raisedBy([] { raiseSnmp("SNMPManager", "Could not start WinSNMP API", 0); });
    ASSERT_NE(raised, nullptr);
    EXPECT_THAT(raised->FullText(),
                testing::MatchesRegex("error SNMP0: Could not start WinSNMP API\\. "
                                      "\\[SNMPManager\\([0-9]+\\) v1\\.0 [A-Z][a-z][a-z] [ 0-9][0-9] "
                                      "[0-9]+ [0-9:]+\\]"));
    const SNMPException outer("Outer", "", 0, -7, SNMPException::warning,
                              std::make_unique<SNMPException>("Inner", "", 0, 5));
    EXPECT_EQ(outer.Text(), "Outer.");
    EXPECT_EQ(outer.FullText(), "warning SNMP-7: Outer.");
    EXPECT_EQ(outer.ChainText(), "warning SNMP-7: Outer.\n    error SNMP5: Inner.");
}

} // namespace
} // namespace mirovane
