#include "probes/registry/RegistryOutput.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <optional>

namespace mirovane {
namespace {

using namespace std::string_literals;

TEST(RegistryOutputTest, PrintedValues) {
    const auto data = [](const std::string& output) {
        const auto value = parsePrintedValue(output);
        return value ? value->data : std::optional("unreadable"s);
    };
    EXPECT_EQ(data("Type       = REG_SZ\nValue      = \"a \"b\"\nValue      = \"c\"\n"),
              "a \"b\"\nValue      = \"c\0"s)
        << "quotes and lines of the value's own";
    EXPECT_EQ(data("Type       = REG_DWORD\nValue      = 4294967295\n"), "\xff\xff\xff\xff");
    EXPECT_EQ(data("Type       = REG_MULTI_SZ\nValue[000] = \"one\"\nValue[001] = \"\"\n"), "one\0\0\0"s);
    EXPECT_EQ(data("Type       = REG_MULTI_SZ\n"), "\0"s);
    for (const int count : {11, 101, 1001}) { // each number's first of one digit more
        std::string output = "Type       = REG_MULTI_SZ\n";
        std::string expected;
        for (int i = 0; i < count; ++i) {
            std::array<char, 16> number{};
            std::snprintf(number.data(), number.size(), "%03d", i);
            output += "Value[" + std::string(number.data()) + "] = \"text " + std::to_string(i) + "\"\n";
            expected += "text " + std::to_string(i) + '\0';
        }
        EXPECT_EQ(data(output), expected + '\0') << count;
    }
    for (const char* elsewhere : {
             "Type       = REG_BINARY\nValue      = 4 bytes\n",
             "Type       = REG_QWORD\nValue      = <unprintable>\n",
             "Type       = REG_SZ\n",
             "Type       = REG_SZ\nValue      = \"cut",
             "Type       = REG_SZ\nValue      = \"\n",
             "Type       = REG_DWORD\nValue      = 4294967296\n",
             "Type       = REG_DWORD\nValue      = 12\nmore\n",
             "Type       = REG_MULTI_SZ\nValue[001] = \"one\"\n",
             "Type       = REG_MULTI_SZ\nValue[000] = \"\n",
         })
        EXPECT_EQ(data(elsewhere), std::nullopt) << elsewhere;
    for (const char* bad :
         {"", "Type       = REG_SZ", "Password for [X\\root]:Type       = REG_SZ\n", "abc\n"})
        EXPECT_EQ(data(bad), "unreadable") << bad;
}

TEST(RegistryOutputTest, SubKeys) {
    using Names = std::vector<std::string>;
    const std::string two = "Keyname   = S-1-5-18\nModtime   = Thu, 01 Jan 1970 00:00:00 UTC\n\n"
                            "Keyname   = with blanks\nModtime   = x\n\n";
    EXPECT_EQ(parseSubKeys(""), Names());
    EXPECT_EQ(parseSubKeys(two), (Names{"S-1-5-18", "with blanks"}));
    EXPECT_EQ(parseSubKeys(two + "Valuename  = \nType       = REG_SZ\nValue      = \"\n\nKeyname   = no\""),
              (Names{"S-1-5-18", "with blanks"}));
    for (const std::string& bad :
         {two + "?", "\n" + two, two.substr(0, two.size() - 1),
          "Keyname   = a\n\nKeyname   = b\nModtime   = x\n\n"s, "Keyname   = a\\b\nModtime   = x\n\n"s,
          "Keyname   = \nModtime   = x\n\n"s})
        EXPECT_EQ(parseSubKeys(bad), std::nullopt) << bad;
}

TEST(RegistryOutputTest, ExportedValues) {
    const std::string output = "Windows Registry Editor Version 5.00\n\n[HKEY_USERS\\x]\n"
                               "\"a\\\\b \\\"c\\\"\"=\"line\n\\\\ \\\"q\\\"\"\n"
                               "\"Number\"=dword:00004241\n"
                               "@=hex(7):6f,00,6e,\\\n  00\n"
                               "\"Bin\"=hex:41,00,ff\n"
                               "\"None\"=hex(0):\n";
    const std::string all = output + "\n[HKEY_USERS\\x\\y]\n\"Deep\"=hex:41\n";
    EXPECT_EQ(parseExportedValue(all, "a\\b \"c\""), "line\n\\ \"q\"\0"s);
    EXPECT_EQ(parseExportedValue(all, "number"), "AB\0\0"s);
    EXPECT_EQ(parseExportedValue(all, ""), "o\0n\0"s);
    EXPECT_EQ(parseExportedValue(all, "BIN"), "A\0\xff"s);
    EXPECT_EQ(parseExportedValue(all, "None"), "");
    EXPECT_EQ(parseExportedValue(all, "Deep"), std::nullopt) << "of another key";
    const std::size_t complete = output.find("\"None\"");
    for (std::size_t size = 0; size < complete; ++size)
        EXPECT_EQ(parseExportedValue(output.substr(0, size), "Bin"), std::nullopt) << size;
    EXPECT_TRUE(parseExportedValue(output.substr(0, complete), "Bin"));
    const std::string head = "Windows Registry Editor Version 5.00\n\n[x]\n";
    for (const char* bad :
         {"\"v\"=hex:4\n", "\"v\"=hex:4g\n", "\"v\"=hex:41,\n", "\"v\"=hex(z):41\n", "\"v\"=dword:\n",
          "\"v\"=dword:123456789\n", "\"v\"=\"\\n\"\n", "\"v=1\n", "v=1\n"})
        EXPECT_EQ(parseExportedValue(head + bad, "v"), std::nullopt) << bad;
}

} // namespace
} // namespace mirovane
