#include "model/records/Placeholders.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

struct Case {
    const char* text;
    ExpandMode mode;
    const char* expanded;
};

CHardware someDevice() {
    CHardware device;
    device.Name = "a.b";
    device.IPAddress = "10.0.0.5";
    device.Username = "[jsmith]";
    device.MACAddress = "00:11";
    device.ToJack = "J7";
    device.Comment = "c+";
    device.SlashText = "S";
    device.BackslashText = "B";
    device.HorzText = "H";
    device.VertText = "V";
    device.ToDo = "T";
    return device;
}

TEST(PlaceholdersTest, ReplacesFieldsByMode) {
    using enum ExpandMode;
    const Case cases[] = {
        {"ping $mvI", Argument, "ping 10.0.0.5"},
        {"$MVn,$mVi,$mvU,$mvM,$mvJ,$mvC,$mv/,$mv\\,$mv-,$mv|,$mvT", Argument,
         "a.b,10.0.0.5,jsmith,00:11,J7,c+,S,B,H,V,T"},
        {"$mvN$mvI", Argument, "a.b$mvI"},       // back to back: only the first
        {"$mvN$mvI$mvJ", Argument, "a.b$mvIJ7"}, // and the one behind a skipped one
        {"x$mv", Argument, "x$mv"},
        {"$mvX $$mvN", Argument, "$mvX $a.b"},
        {"", Argument, ""},
        {"^$mvN $mvC.$", Pattern, "^a\\.b c\\+.$"},
        {"$mvM $mvN", Command, "$mvM a.b"},
        {"$mvW", Argument, "$mvW"},
        {"$mvW $mvN $mvw", Command, "typed a.b typed"},
    };
    const CHardware device = someDevice();
    for (const Case& c : cases)
        EXPECT_EQ(Expand(c.text, device, c.mode, [] { return std::string("typed"); }), c.expanded) << c.text;
}

TEST(PlaceholdersTest, HandsOutTheBareUserName) {
    CHardware device;
    for (const auto& [stored, bare] : {std::pair{"jsmith", "jsmith"},
                                       {"[jsmith]", "jsmith"},
                                       {"[", ""},
                                       {"[]", ""},
                                       {"[jsmith](2)", "jsmith](2"}}) {
        device.Username = stored;
        EXPECT_EQ(Expand("$mvU", device, ExpandMode::Argument), bare);
    }
}

TEST(PlaceholdersTest, EscapesEveryCharacterThatMeansSomethingInAPattern) {
    CHardware device;
    device.Name = "^$.*+?|()[]{}\\-a";
    EXPECT_EQ(Expand("$mvN", device, ExpandMode::Pattern), "\\^\\$\\.\\*\\+\\?\\|\\(\\)\\[\\]\\{\\}\\\\-a");
}

} // namespace

} // namespace mirovane
