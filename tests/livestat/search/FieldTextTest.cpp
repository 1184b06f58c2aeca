#include "livestat/search/FieldText.h"

#include <gtest/gtest.h>

namespace mirovane {

TEST(FieldTextTest, FieldsStandBetweenDelimitersOutsideQuotes) {
    struct Case {
        const char* line;
        const char* delimiter;
        std::int32_t position;
        const char* field;
    };
    const Case cases[] = {
        {"a,\"b,c\",d", ",", 2, "\"b,c\""},
        {"a,\"b,c\",d", ",", 3, "d"},
        {"a,\"b,c\",d", ",", 4, ""},
        {"a,b,", ",", 3, ""},
        {",b", ",", 1, ""},
        {"", ",", 1, ""},
        {"no delimiter", ",", 1, "no delimiter"},
        {"no delimiter", ",", 2, ""},
        {"a\tb\\tc", "\\t", 2, "b\\tc"}, // the line's own backslashes are not tabs
        {"a, \tb", ",\\t", 1, "a, \tb"},
        {"a,\tb", ",\\t", 2, "b"},
        {"a::b:c::d", "::", 2, "b:c"},
        {"a:::b", "::", 2, ":b"},
        {"x\\y\\z", "\\", 3, "z"},
        {"19\" monitor,Room 5", ",", 2, "Room 5"}, // a quote alone protects nothing
        {"\"a,b\",19\" monitor,Room 5", ",", 3, "Room 5"},
        {"1\"x\"2,3", ",", 1, "1\"x\"2"},
        {"KeptAsItStands;B", ";", 1, "KeptAsItStands"},
        {"a,b", ",", 2147483647, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(delimitedField(c.line, c.delimiter, c.position), c.field)
            << c.line << " at " << c.delimiter << " number " << c.position;
}

} // namespace mirovane
