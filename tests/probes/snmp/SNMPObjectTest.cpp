#include "probes/snmp/SNMPObject.h"

#include "tests/probes/snmp/RaisedBy.h"

#include <gtest/gtest.h>

namespace mirovane {
namespace {

using test::messageOf;
using namespace std::string_literals;

SNMPValue ticks(std::uint32_t hundredths) {
    SNMPValue value;
    value.syntax = SNMPSyntax::TimeTicks;
    value.unsignedNumber = hundredths;
    return value;
}

SNMPValue octets(const std::string& bytes) {
    SNMPValue value;
    value.syntax = SNMPSyntax::Octets;
    value.octets = bytes;
    return value;
}

std::string textOf(const SNMPValue& value) {
    SNMPObject object("");
    object.SetFromValue(value);
    return object.ValueText();
}

TEST(SNMPObjectTest, TimesInDaysHoursMinutesAndMilliseconds) {
    const std::pair<std::uint32_t, const char*> times[] = {
        {0, "0,0:0:0.000"},        {1, "0,0:0:0.010"},       {5, "0,0:0:0.050"},
        {9, "0,0:0:0.090"},        {10, "0,0:0:0.100"},      {11, "0,0:0:0.110"},
        {25, "0,0:0:0.250"},       {99, "0,0:0:0.990"},      {100, "0,0:0:1.000"},
        {110, "0,0:0:1.100"},      {5999, "0,0:0:59.990"},   {6000, "0,0:1:0.000"},
        {123456, "0,0:20:34.560"}, {360000, "0,1:0:0.000"},  {8639999, "0,23:59:59.990"},
        {8640000, "1,0:0:0.000"},  {9006105, "1,1:1:1.050"}, {4294967295, "497,2:27:52.950"},
    };
    for (const auto& [hundredths, text] : times)
        EXPECT_EQ(textOf(ticks(hundredths)), text) << hundredths;
}

TEST(SNMPObjectTest, OctetsAreTextOrHex) {
    const std::pair<std::string, const char*> values[] = {
        {"public", "\"public\""},
        {"two\r\nlines ~", "\"two\r\nlines ~\""},
        {"\x7F", "7F"},
        {"a\tb", "61-09-62"},
        {"\x00\x1A\x2B"s, "00-1A-2B"},
        {"", "\"\""},
    };
    for (const auto& [bytes, text] : values)
        EXPECT_EQ(textOf(octets(bytes)), text);
}

TEST(SNMPObjectTest, OctetsThatAreSetAreBinary) {
    SNMPObject object("");
    EXPECT_EQ(object.ValueText(), "null");
    object.SetOctets("ignored", 7);
    std::size_t length = 1;
    EXPECT_EQ(object.GetOctets(length), nullptr) << "not of this syntax";
    EXPECT_EQ(length, 0U);
    object.SetFromValue(octets("text"));
    EXPECT_EQ(object.GetOctets(length)[3], 't');
    EXPECT_EQ(length, 4U);
    object.SetOctets("text", 3);
    EXPECT_EQ(object.ValueText(), "74-65-78");
    EXPECT_EQ(object.GetOctets(length)[2], 'x');
    EXPECT_EQ(length, 3U);
    object.SetOctets(nullptr, 3);
    EXPECT_EQ(object.ValueText(), "empty");
    object.SetFromValue(octets("text"));
    EXPECT_EQ(object.ValueText(), "\"text\"") << "the bytes from before are gone";
}

TEST(SNMPObjectTest, IdentifiersFromText) {
    EXPECT_EQ(SNMPObject("").GetOid(), nullptr);
    for (const char* text : {"1.3.6.1.2.1.1.5.0", "0.0", "1.39", "2.999.4294967295", "2.4294967215"})
        EXPECT_EQ(SNMPObject(text).OidText(), text);
    EXPECT_EQ(SNMPObject(".1.3.6").OidText(), "1.3.6");
    std::string longest = "1.3";
    for (std::size_t i = 2; i < longestSnmpOid; ++i)
        longest += ".4294967295";
    EXPECT_EQ(SNMPObject(longest).OidText(), longest);
    for (const std::string& text :
         {"1"s, "1."s, "."s, "1..3"s, "1.3."s, "..1.3"s, "1.3.4294967296"s, "1.-3"s, "1.3 "s, "sysName.0"s,
          "3.1"s, "1.40"s, "2.4294967216"s, longest + ".1"}) {
        EXPECT_EQ(messageOf([&] { const SNMPObject object(text); }),
                  "Could not convert OID from string representation")
            << text;
    }
    SNMPObject object("1.3.6");
    EXPECT_EQ(messageOf([&] { object.SetOid("x"); }), "Could not convert OID from string representation");
    EXPECT_EQ(object.GetOid(), nullptr) << "the one from before is gone";
    EXPECT_EQ(messageOf([&] { object.OidText(); }), "Failed to convert OID to string");
}

} // namespace
} // namespace mirovane
