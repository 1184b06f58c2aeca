#include "feature/FeatureOwner.h"
#include "tests/station/StationFixture.h"
#include "tests/support/InstantNetwork.h"

#include <gmock/gmock.h>
#include <thread>

namespace mirovane::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;

std::uint32_t at(const char* text) {
    return parseRangeAddress(text).value();
}

/// A station that can sweep 127.0.0.1 to 127.0.0.40, of which three printers have the first three addresses.
class DiscoverNowTest : public StationFixture {
protected:
    DiscoverNowTest() {
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        range.Name = "127.0.0.1";
        range.IPAddress = "127.0.0.40";
        EXPECT_FALSE(b.station->openDatafile(path));
        b.doc().append(range);
        EXPECT_FALSE(b.station->saveDatafile().failed());
        network.living = {at("127.0.0.2"), at("127.0.0.30"), at("127.0.0.9")};
        network.names[at("127.0.0.9")] = "nine.example";
        open(sweeper);
    }

    CDiscoverNow& now() { return *sweeper.station->features().discoverNow(); }
    std::string refusal(int perSecond) {
        const auto refused = now().start(perSecond);
        return refused ? refused->text : "it began";
    }
    CMirovaneDoc& doc() { return sweeper.doc(); }

    /// Time passes until the sweep is over.
    void finishSweep() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (now().running() && std::chrono::steady_clock::now() < deadline) {
            pass(100);
            std::this_thread::yield();
        }
        ASSERT_FALSE(now().running());
    }

    /// Time passes until so many hosts were found.
    void findHosts(std::size_t count) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (now().found().size() < count && std::chrono::steady_clock::now() < deadline) {
            pass(100);
            std::this_thread::yield();
        }
        ASSERT_GE(now().found().size(), count);
    }

    static std::map<std::string, std::string> discovered(const CMirovaneDoc& document) {
        std::map<std::string, std::string> names;
        for (std::size_t i = 0; i < document.size(); ++i)
            if (document.at(i).inDiscovered())
                names.emplace(document.at(i).IPAddress, document.at(i).Name);
        return names;
    }

    std::map<std::string, std::string> onDisk() {
        Site reader(clock, timers, {"READER", "r"}, false);
        EXPECT_FALSE(reader.station->openDatafile(path));
        return discovered(reader.doc());
    }

    void claimForOther() {
        b.doc().edit(*b.doc().findSpecial(SpecialType::LiveDiscoverOwnerRecord), [](CHardware& owner) {
            owner.State = 1;
            owner.Name = "B-HOST";
            owner.Username = "b-user";
        });
        EXPECT_FALSE(b.station->saveDatafile().failed());
    }

    std::size_t saves() {
        const Lines lines = sweeper.logged();
        return static_cast<std::size_t>(std::count_if(
            lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("Saved"); }));
    }

    InstantNetwork network;
    Site sweeper{clock, timers, {"A-HOST", "a-user"}, false, nullptr, &network};
};

TEST_F(DiscoverNowTest, AddsWhatAnswersWithOneSaveAtItsEnd) {
    ASSERT_FALSE(now().start(500));
    EXPECT_TRUE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));
    EXPECT_EQ(saves(), 1U) << "the others must know who discovers";
    EXPECT_EQ(refusal(500), "Discover Now runs already.");
    finishSweep();
    EXPECT_EQ(saves(), 1U);
    EXPECT_THAT(discovered(doc()), ElementsAre(Pair("127.0.0.30", ""), Pair("127.0.0.9", "nine.example")));
    EXPECT_EQ(onDisk(), discovered(doc()));
    EXPECT_THAT(network.asked(), SizeIs(37));
    EXPECT_THAT(network.asked(), Not(Contains(at("127.0.0.2")))) << "a printer has it";
    EXPECT_FALSE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));
    const SweepResult& result = now().result().value();
    EXPECT_EQ(describeResult(result),
              "Asked 37 addresses: 2 hosts answered, all added to the Discovered/Misc window.");
    ASSERT_THAT(result.added, SizeIs(2));
    const CHardware* device = doc().findDevice(result.added[0].recID);
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->IPAddress, "127.0.0.9") << "by address";
    EXPECT_EQ(device->Comment, "NEW");
    EXPECT_EQ(device->State, DeviceState::On);
}

TEST_F(DiscoverNowTest, CancellingKeepsOrDiscardsAsTold) {
    ASSERT_FALSE(now().start(100));
    findHosts(1);
    now().end(CDiscoverNow::Found::Discard);
    EXPECT_FALSE(now().running());
    EXPECT_THAT(discovered(doc()), IsEmpty());
    EXPECT_FALSE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));
    EXPECT_THAT(describeResult(now().result().value()), HasSubstr("nothing was added"));

    ASSERT_FALSE(now().start(100));
    findHosts(1);
    now().end(CDiscoverNow::Found::Keep);
    EXPECT_THAT(onDisk(), Contains(Pair("127.0.0.9", testing::_)));
    EXPECT_FALSE(now().result()->complete);
    EXPECT_THAT(describeResult(now().result().value()), HasSubstr("Stopped after "));
}

TEST_F(DiscoverNowTest, LeavesLiveDiscoverToThoseWhoRunItHere) {
    ASSERT_FALSE(now().start(500));
    sweeper.station->features().liveDiscover().toggle();
    finishSweep();
    EXPECT_TRUE(FeatureOwner::isHere(doc(), Feature::LiveDiscover)) << "it goes on behind the sweep";
    sweeper.station->features().liveDiscover().toggle();
    pass(10'000);
    ASSERT_FALSE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));

    FeatureOwner::claim(doc(), Feature::LiveDiscover); // as another program of this user did
    ASSERT_FALSE(now().start(500));
    finishSweep();
    EXPECT_TRUE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));
}

TEST_F(DiscoverNowTest, HoldsTheRecordUntilItsEndThoughLiveDiscoverGoesOff) {
    sweeper.station->features().liveDiscover().toggle();
    ASSERT_FALSE(now().start(3));
    sweeper.station->features().liveDiscover().toggle();
    pass(1000);
    ASSERT_FALSE(sweeper.station->features().liveDiscover().disabling());
    EXPECT_TRUE(FeatureOwner::isHere(doc(), Feature::LiveDiscover)) << "the sweep goes on";
    now().end(CDiscoverNow::Found::Discard);
    EXPECT_FALSE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));
}

TEST_F(DiscoverNowTest, OneAnswerLeavesBothToTheOtherStation) {
    sweeper.station->features().liveDiscover().toggle();
    ASSERT_FALSE(now().start(3));
    ASSERT_FALSE(b.station->openDatafile(path));
    claimForOther();
    pass(3000);
    EXPECT_THAT(sweeper.dialogs.questions, SizeIs(1));
    EXPECT_FALSE(sweeper.station->features().liveDiscover().enabled());
    EXPECT_FALSE(now().running());
    EXPECT_TRUE(now().result()->takenOver);
    EXPECT_TRUE(FeatureOwner::isElsewhere(doc(), Feature::LiveDiscover));
}

TEST_F(DiscoverNowTest, ASecondSweepKnowsNothingOfTheFirstOne) {
    ASSERT_FALSE(now().start(500));
    finishSweep();
    ASSERT_THAT(now().found(), SizeIs(2));
    network.living = {at("127.0.0.12")};
    ASSERT_FALSE(now().start(500));
    EXPECT_THAT(now().found(), IsEmpty());
    EXPECT_FALSE(now().result());
    finishSweep();
    EXPECT_EQ(describeResult(now().result().value()),
              "Asked 35 addresses: 1 host answered, added to the Discovered/Misc window.");
    EXPECT_THAT(now().found(), ElementsAre(FoundHost{at("127.0.0.12"), ""}));
    EXPECT_THAT(onDisk(), SizeIs(3));
}

TEST_F(DiscoverNowTest, AsksBeforeItTakesLiveDiscoverFromAnother) {
    claimForOther();
    pass(3000);
    sweeper.dialogs.answer = false;
    EXPECT_EQ(refusal(500), "");
    EXPECT_THAT(sweeper.dialogs.questions,
                ElementsAre(HasSubstr("Live Discover is enabled by B-HOST\\b-user.")));
    EXPECT_FALSE(now().running());
    EXPECT_TRUE(FeatureOwner::isElsewhere(doc(), Feature::LiveDiscover));
    sweeper.dialogs.answer = true;
    EXPECT_FALSE(now().start(500));
    finishSweep();
    EXPECT_THAT(onDisk(), SizeIs(2));
}

TEST_F(DiscoverNowTest, EndsWhenAnotherStationTakesOverAndTheUserGivesIn) {
    ASSERT_FALSE(now().start(3));
    findHosts(1);
    pass(3000);
    ASSERT_FALSE(b.station->openDatafile(path));
    claimForOther();
    ASSERT_TRUE(now().running());
    sweeper.dialogs.answer = false;
    pass(3000);
    finishSweep();
    EXPECT_THAT(sweeper.dialogs.questions,
                ElementsAre(HasSubstr("Live Discover is enabled by B-HOST\\b-user.")));
    EXPECT_THAT(onDisk(), Contains(Pair("127.0.0.9", testing::_)));
    EXPECT_TRUE(FeatureOwner::isElsewhere(doc(), Feature::LiveDiscover)) << "it is that one's";
}

TEST_F(DiscoverNowTest, ASaveThatBringsTheOtherOwnerAlongAsksToo) {
    ASSERT_FALSE(now().start(3));
    findHosts(1);
    pass(3000);
    ASSERT_FALSE(b.station->openDatafile(path));
    claimForOther();
    sweeper.dialogs.answer = false;
    rename(sweeper, 1, "renamed here");
    ASSERT_FALSE(sweeper.station->saveDatafile().failed());
    EXPECT_FALSE(now().running());
    EXPECT_THAT(sweeper.dialogs.questions, SizeIs(1));
    EXPECT_TRUE(now().result().value().takenOver);
    EXPECT_THAT(onDisk(), Contains(Pair("127.0.0.9", testing::_)));
    EXPECT_TRUE(FeatureOwner::isElsewhere(doc(), Feature::LiveDiscover));
}

TEST_F(DiscoverNowTest, GoesOnWhileTheDocumentIsReplaced) {
    ASSERT_FALSE(now().start(10));
    findHosts(1);
    ASSERT_FALSE(b.station->openDatafile(path));
    b.doc().addDevice(
        DeviceType::Computer, [](CHardware& device) { device.IPAddress = "127.0.0.30 >>"; });
    b.doc().addDevice(DeviceType::Computer, [](CHardware& device) { device.IPAddress = "127.0.0.30>>"; });
    ASSERT_FALSE(b.station->saveDatafile().failed());
    finishSweep();
    EXPECT_THAT(sweeper.logged(), Contains("Loaded from data file"));
    EXPECT_THAT(onDisk(), ElementsAre(Pair("127.0.0.9", "nine.example"))) << "a colleague added the other";
    EXPECT_EQ(now().result()->alreadyKnown, 1U);
    EXPECT_TRUE(now().result()->complete);
}

TEST_F(DiscoverNowTest, ASaveThatCollidesAddsAgain) {
    ASSERT_FALSE(now().start(100));
    findHosts(1);
    ASSERT_FALSE(b.station->openDatafile(path));
    rename(b, 1, "renamed by B");
    b.doc().addDevice(DeviceType::Printer); // takes the number that the sweep's first find would get
    ASSERT_FALSE(b.station->saveDatafile().failed());
    now().end(CDiscoverNow::Found::Keep); // before the watch has seen it
    EXPECT_THAT(onDisk(), Contains(Pair("127.0.0.9", testing::_)));
    EXPECT_EQ(doc().findDevice(1)->Name, "renamed by B");
    EXPECT_FALSE(FeatureOwner::isHere(doc(), Feature::LiveDiscover));
    EXPECT_FALSE(now().result()->saveFailed);
    const auto& added = now().result()->added;
    ASSERT_FALSE(added.empty());
    EXPECT_EQ(doc().findDevice(added[0].recID)->IPAddress, "127.0.0.9");
}

TEST_F(DiscoverNowTest, LeavingTheDatafileKeepsWhatWasFound) {
    ASSERT_FALSE(now().start(100));
    findHosts(1);
    sweeper.station->newDatafile();
    EXPECT_FALSE(now().running());
    EXPECT_THAT(onDisk(), Contains(Pair("127.0.0.9", testing::_)));
    EXPECT_THAT(discovered(doc()), IsEmpty());
}

TEST_F(DiscoverNowTest, WaitsWithItsResultsWhileAQuestionIsOpen) {
    ASSERT_FALSE(now().start(500));
    {
        const CPause pause(sweeper.station->pauses());
        findHosts(2);
        pass(10'000);
        EXPECT_TRUE(now().running());
        EXPECT_THAT(discovered(doc()), IsEmpty());
    }
    finishSweep();
    EXPECT_THAT(discovered(doc()), SizeIs(2));
}

TEST_F(DiscoverNowTest, SaysWhyItCannotBegin) {
    network.unusable = "Ping is not permitted: do this.";
    EXPECT_EQ(refusal(500), "Ping is not permitted: do this.");
    network.unusable.reset();
    const CHardware* range = doc().findSpecial(SpecialType::DiscoverRangeRecord);
    doc().edit(*range, [](CHardware& record) { record.IPAddress = "127.0.0.256"; });
    EXPECT_EQ(refusal(500), std::string(invalidRangeText) + " (From \"127.0.0.1\" To \"127.0.0.256\").");
    doc().edit(*range, [](CHardware& record) { record.IPAddress = "127.0.0.3"; });
    EXPECT_EQ(refusal(500), "Every address of the ranges belongs to a device already.");
    doc().remove(*range);
    EXPECT_EQ(refusal(500), "Live Discover does not have IP range(s) to discover.");
    EXPECT_FALSE(now().running());
    EXPECT_EQ(saves(), 0U) << "the datafile was left alone";
}

TEST_F(DiscoverNowTest, WarnsOfAMistypedRange) {
    EXPECT_EQ(sweepWarning(CSweepPlan({{at("10.0.0.0"), at("10.0.255.255")}}, {}), 500), std::nullopt);
    EXPECT_EQ(sweepWarning(CSweepPlan({{at("10.0.0.0"), at("10.255.255.255")}}, {}), 500),
              "The ranges hold 16,777,216 addresses. At 500 probes a second, fewer where nobody answers, "
              "that takes up to 34:57 h.");
}

} // namespace
} // namespace mirovane::test
