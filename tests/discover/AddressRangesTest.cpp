#include "discover/AddressRanges.h"

#include "tests/model/DocumentFixture.h"
#include "tests/support/NewFloor.h"

namespace mirovane {
namespace {

TEST(AddressRangesTest, ReadsFourNumbersAndNothingElse) {
    EXPECT_EQ(parseRangeAddress("10.0.1.2"), 0x0a000102U);
    EXPECT_EQ(parseRangeAddress("255.255.255.255"), 0xffffffffU);
    EXPECT_EQ(parseRangeAddress("010.00.0.007"), 0x0a000007U);
    for (const char* text : {"", "10.0.0", "10.0.0.", "10..0.1", ".10.0.1", "10.0.0.256", "10.0.0.1.",
                             "10.0.0.1.2", " 10.0.0.1", "10.0.0.1 ", "10.0.0.+1", "10.0.0.-1", "10.0.0.0x1",
                             "10.0.0.a", "10.0.0.99999999999999999999", "10.0.0.4294967297"})
        EXPECT_FALSE(parseRangeAddress(text)) << text;
}

TEST(AddressRangesTest, TheNextAddressCarries) {
    const auto next = [](const char* text) {
        return formatRangeAddress(nextAddress(parseRangeAddress(text).value()));
    };
    EXPECT_EQ(next("10.0.0.254"), "10.0.0.255");
    EXPECT_EQ(next("10.0.0.255"), "10.0.1.0");
    EXPECT_EQ(next("10.255.255.255"), "11.0.0.0");
}

TEST(AddressRangesTest, EndsCompareAsNumbers) {
    EXPECT_EQ(makeRange("10.0.0.9", "10.0.0.10"), (AddressRange{0x0a000009, 0x0a00000a}));
    EXPECT_TRUE(makeRange("10.0.0.9", "10.0.0.9"));
    EXPECT_TRUE(makeRange("9.255.255.255", "200.0.0.0"));
    EXPECT_FALSE(makeRange("10.0.0.10", "10.0.0.9"));
    EXPECT_FALSE(makeRange("10.0.0.9", ""));
    EXPECT_FALSE(makeRange("", "10.0.0.9"));
}

using AddressRangesInDocumentTest = test::DocumentFixture;

TEST_F(AddressRangesInDocumentTest, AreListedInOrderAndTheFirstInvalidOneIsFound) {
    test::newFloor(doc);
    const auto add = [this](const char* from, const char* to) {
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        range.Name = from;
        range.IPAddress = to;
        return doc.append(range);
    };
    EXPECT_TRUE(discoverRanges(doc).empty());
    const CHardware* first = add("10.0.0.9", "10.0.0.10");
    EXPECT_EQ(firstInvalidRange(doc), nullptr);
    const CHardware* blank = add("", "");
    const CHardware* third = add("10.0.0", "10.0.0.4");
    EXPECT_EQ(discoverRanges(doc), (std::vector<const CHardware*>{first, blank, third}));
    EXPECT_EQ(firstInvalidRange(doc), blank);
}

} // namespace
} // namespace mirovane
