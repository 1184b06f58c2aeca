#include "model/find/QuickFind.h"

#include "tests/model/DocumentFixture.h"

#include <gmock/gmock.h>
#include <random>

namespace mirovane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using IDs = std::vector<std::int32_t>;

class QuickFindTest : public test::DocumentFixture {
protected:
    QuickFindTest() { link.newDatafile(); }

    std::int32_t add(const std::function<void(CHardware&)>& fill, std::int32_t type = DeviceType::Computer) {
        return doc.addDevice(type, fill)->RecID;
    }
    void edit(std::int32_t recID, const std::function<void(CHardware&)>& change) {
        doc.edit(*doc.findDevice(recID), change);
    }
    static IDs ids(const QuickFindResult& result) {
        IDs found;
        for (const CHardware* device : result.devices)
            found.push_back(device->RecID);
        return found;
    }
    IDs found(std::string_view typed) { return ids(finder.find(typed)); }

    CQuickFind finder{doc};
};

TEST_F(QuickFindTest, AnyNotationOfAMACAddressIsFound) {
    const char* stored[] = {"02:1b:5e:00:01:02", "02-1B-5E-00-01-02", "021b.5e00.0102",
                            "021B5E000102",      "021b-5e00-0102 >>", "2:1b:5e:0:1:2"};
    for (const char* address : stored)
        add([&](CHardware& device) { device.MACAddress = address; });
    for (const char* typed : {"02:1b:5e:00:01:02", "021b.5e00", "02-1B-5E", "021b5e", "1b:5e:00:0", "5e00.01",
                              "2:1b:5e:0:1:2", "021B5E-00"})
        EXPECT_THAT(found(typed), ElementsAre(1, 2, 3, 4, 5, 6)) << typed;
    EXPECT_THAT(found("02:1b:5f"), IsEmpty());
    // Parts of IP addresses are not parts of a MAC address.
    EXPECT_THAT(found("1.02"), IsEmpty());
    EXPECT_THAT(found("02.1b"), IsEmpty());
}

TEST_F(QuickFindTest, TheBestComesFirst) {
    add([](CHardware& each) { each.Comment = "next to ada's desk"; });
    add([](CHardware& each) { each.ToJack = "ADA"; });
    add([](CHardware& each) { each.Name = "canada-1"; });
    add([](CHardware& each) { each.Comment = "Ada borrowed it"; });
    add([](CHardware& each) { each.Username = "ada.l"; });
    add([](CHardware& each) { each.Name = "ada-pc"; });
    add([](CHardware& each) {
        each.Name = "nada";
        each.Username = "Ada";
    });
    EXPECT_THAT(found("ada"), ElementsAre(7, 6, 5, 2, 3, 4, 1));
    const QuickFindResult some = finder.find("ada", 2);
    EXPECT_THAT(ids(some), ElementsAre(7, 6));
    EXPECT_EQ(some.total, 7U);
}

TEST_F(QuickFindTest, EveryWordMustFitSomewhere) {
    add([](CHardware& each) { each.Comment = "Room 12, Ada Lovelace"; }, DeviceType::Printer);
    add([](CHardware& each) { each.Name = "ada"; });
    add([](CHardware& each) { each.Name = "lovelace ada"; }, DeviceType::Printer);
    EXPECT_THAT(found("ada printer"), ElementsAre(1, 3));
    EXPECT_THAT(found(" ada lovelace "), ElementsAre(1, 3)) << "next to each other before apart";
    EXPECT_THAT(found("ada scanner"), IsEmpty());
    EXPECT_THAT(found(" "), IsEmpty());
}

TEST_F(QuickFindTest, OddTextsAreFoundAndNothingIsFoundAcrossFields) {
    add([](CHardware& each) {
        each.Name = "M\xDCLLER";
        each.Comment = "first line\r\nsecond line";
    });
    add([](CHardware& each) { each.ToJack = "11,22,33,44,"; }, DeviceType::LocationMarker);
    EXPECT_THAT(found("müller"), ElementsAre(1));
    EXPECT_THAT(found("SECOND L"), ElementsAre(1));
    EXPECT_THAT(found("MÜLLER\nfirst"), ElementsAre(1)) << "pasted over a line's end: two words";
    EXPECT_THAT(found("22,33"), IsEmpty()) << "the corners of a marker's area";
    EXPECT_THAT(found(std::string_view("\0", 1)), IsEmpty());
}

/// The index against one made anew, after any number of changes.
TEST_F(QuickFindTest, TheIndexFollowsTheDocument) {
    std::mt19937 random(3);
    for (int i = 0; i < 40; ++i)
        add([i](CHardware& each) { each.Name = "pc-" + std::to_string(i); });
    finder.prepare();
    const auto anyDevice = [&]() -> const CHardware& {
        for (;;)
            if (const CHardware& record = doc.at(random() % doc.size()); record.isDevice())
                return record;
    };
    for (int step = 0; step < 400; ++step) {
        const auto kind = random() % 8;
        const std::string name = "pc-" + std::string(random() % 30, 'x') + std::to_string(random() % 50);
        if (kind == 0)
            add([&](CHardware& each) { each.Name = name; });
        else if (kind == 1 && doc.deviceCount() > 5)
            doc.remove(anyDevice());
        else
            doc.edit(anyDevice(),
                     [&](CHardware& each) { kind == 2 ? each.State = 1 : (each.Name = name, 0); });
        const std::string typed = std::to_string(random() % 50);
        IDs followed = found(typed);
        IDs fresh = ids(CQuickFind(doc).find(typed));
        std::ranges::sort(followed);
        std::ranges::sort(fresh);
        ASSERT_EQ(followed, fresh) << step;
    }
    link.newDatafile();
    EXPECT_THAT(found("pc"), IsEmpty());
}

TEST_F(QuickFindTest, ThePlaceIsTheNearestMarker) {
    const auto marker = [&](const char* name, std::int32_t x) {
        return add(
            [&](CHardware& each) {
                each.Comment = name;
                each.Position = {x, 0};
            },
            DeviceType::LocationMarker);
    };
    const std::int32_t pc = add([](CHardware& each) { each.Position = {400, 0}; });
    const auto place = [&] {
        return quickFindPlace(finder, *doc.findDevice(pc));
    };
    EXPECT_EQ(place(), "");
    marker("Hall 1\r\nnorth", 0);
    const std::int32_t second = marker("Hall 2", 900);
    EXPECT_EQ(place(), "Hall 1");
    edit(second, [](CHardware& each) { each.Position.x = 500; });
    EXPECT_EQ(place(), "Hall 2");
    edit(pc, [](CHardware& each) { each.Type += DeviceType::discoveredOffset; });
    EXPECT_EQ(place(), "Discovered/Misc");
}

} // namespace

} // namespace mirovane
