#include "probes/snmp/transport/SNMPMessage.h"

#include "probes/snmp/SNMPObject.h"
#include "tests/probes/snmp/transport/SNMPWire.h"

#include <gtest/gtest.h>

namespace mirovane {
namespace {

using namespace test::wire;

std::optional<SNMPMessage> decoded(const std::string& bytes) {
    return decodeSnmpMessage(asBytes(bytes));
}

TEST(SNMPMessageTest, ValuesOfOddTypes) {
    const std::pair<std::string, const char*> values[] = {
        {thing(0x80, ""), "no such object"},
        {thing(0x81, ""), "no such instance"},
        {thing(0x82, ""), "end of mib"},
        {thing(0x05, ""), "null"},
        {thing(0x99, "abc"), "not printable (153)"},
        {thing(0x45, std::string("\x49\x00\x01", 3)), "73.0.1"},
        {thing(0x46, std::string("\x00\x00\x00\x01\x00\x00\x00\x02", 8)), "4294967298"},
        {thing(0x46, std::string(8, '\xFF')), "18446744073709551615"},
        {thing(0x47, std::string("\x00\xFF\xFF\xFF\xFE", 5)), "4294967294"},
        {thing(0x42, "\xFF\xFF\xFF\xFE"), "4294967294"}, // agents that forget the leading zero
        {thing(0x03, std::string("\x06\x80\x40", 3)), "06-80-40"},
        {thing(0x44, ""), "\"\""},
        {thing(0x40, "\x0A\x02"), "10.2"},
        {thing(0x04, "caf\xE9"), "63-61-66-E9"},
    };
    for (const auto& [value, text] : values) {
        const auto message = decoded(Reply{1, binding(value)}.bytes());
        ASSERT_TRUE(message && message->pdu.bindings.size() == 1) << text;
        SNMPObject object("");
        object.SetFromValue(message->pdu.bindings[0].value);
        EXPECT_EQ(object.ValueText(), text);
    }
}

TEST(SNMPMessageTest, ANumberThatIsTooLargeIsNotCutDownToAnother) {
    for (const int syntax : {0x02, 0x41, 0x42, 0x43, 0x47}) {
        const auto message =
            decoded(Reply{1, binding(thing(syntax, std::string("\x01\0\0\0\x07", 5)))}.bytes());
        ASSERT_TRUE(message);
        EXPECT_TRUE(message->pdu.damaged) << syntax;
    }
}

TEST(SNMPMessageTest, MessagesThatAreCutShortAreNone) {
    const std::string whole = Reply{1}.bytes();
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    EXPECT_FALSE(decoded(whole + "more")->pdu.damaged) << "bytes behind it don't count";
}

TEST(SNMPMessageTest, BindingsThatMakeNoSenseDamageIt) {
    const std::string nonsense[] = {
        thing(0x30, thing(0x04, "name")),                               // no identifier
        binding(std::string("\x02\x7F\x01", 3)),                        // a length that lies
        binding(std::string("\x04\x84\xFF\xFF\xFF\xFF", 6)),            // 4 GB
        binding(std::string("\x41\x09\x01", 3) + std::string(8, '\0')), // a counter of nine bytes
        binding(""),                                                    // no value
        binding(thing(0x43, "\x01")).substr(1),                         // not even a sequence
        std::string(40000, '\0'),
    };
    for (const std::string& bindings : nonsense) {
        const auto message = decoded(Reply{1, binding(thing(0x02, "\x01")) + bindings}.bytes());
        ASSERT_TRUE(message);
        EXPECT_TRUE(message->pdu.damaged);
        EXPECT_EQ(message->pdu.bindings.size(), 1U) << "those before it are whole";
    }
}

TEST(SNMPMessageTest, SixtyFourKilobytesOfBindings) {
    std::string bindings;
    std::size_t count = 0;
    for (; bindings.size() < 65400; ++count)
        bindings += binding(thing(0x02, "\x07"));
    EXPECT_EQ(decoded(Reply{1, bindings}.bytes())->pdu.bindings.size(), count);
}

} // namespace
} // namespace mirovane
