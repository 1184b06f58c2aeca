#include "discover/RangeEdits.h"

#include "discover/AddressRanges.h"
#include "tests/model/DocumentFixture.h"
#include "tests/support/NewFloor.h"

#include <gtest/gtest.h>
#include <vector>

namespace mirovane {

static void PrintTo(const RangeText& range, std::ostream* out) {
    *out << range.From << ".." << range.To;
}

namespace {

using Ranges = std::vector<RangeText>;

class RangeEditsTest : public test::DocumentFixture {
protected:
    void SetUp() override { test::newFloor(doc); }
    void add(const RangeText& range) {
        const RangeEdit edit{std::nullopt, range};
        ASSERT_TRUE(applyRangeEdits(doc, std::span(&edit, 1)));
    }
    Ranges ranges() const {
        Ranges found;
        for (const CHardware* record : discoverRanges(doc))
            found.push_back({record->Name, record->IPAddress});
        return found;
    }

    const RangeText a{"10.0.0.1", "10.0.0.9"}, b{"10.0.1.1", "10.0.1.9"}, c{"10.0.2.1", "10.0.2.9"};
};

TEST_F(RangeEditsTest, ChangeDeleteAndAddInOneGo) {
    add(a);
    add(b);
    const RangeText longer{"10.0.0.1", "10.0.0.99"};
    const std::vector<RangeEdit> edits = {{a, longer}, {std::nullopt, c}, {b, std::nullopt}};
    EXPECT_TRUE(applyRangeEdits(doc, edits));
    EXPECT_EQ(ranges(), (Ranges{longer, c}));
    const std::vector<RangeEdit> none = {{longer, longer}, {c, c}};
    EXPECT_FALSE(applyRangeEdits(doc, none));
}

/// Two ranges trade their texts, twins are edited apart: each edit must find its own record.
TEST_F(RangeEditsTest, EachEditFindsItsOwnRecord) {
    add(a);
    add(b);
    add(a);
    const std::vector<RangeEdit> edits = {{a, b}, {b, a}, {a, c}};
    applyRangeEdits(doc, edits);
    EXPECT_EQ(ranges(), (Ranges{b, a, c}));
}

TEST_F(RangeEditsTest, WhatAnotherStationDidMeanwhileStays) {
    add(a);
    add(b); // another station's; the window read only a
    const std::vector<RangeEdit> edits = {{a, a}, {c, std::nullopt}};
    EXPECT_FALSE(applyRangeEdits(doc, edits));
    EXPECT_EQ(ranges(), (Ranges{a, b}));
    const RangeEdit lost{c, RangeText{"10.0.2.1", "10.0.2.5"}};
    EXPECT_TRUE(applyRangeEdits(doc, std::span(&lost, 1)));
    EXPECT_EQ(ranges(), (Ranges{a, b, *lost.after}));
}

} // namespace
} // namespace mirovane
