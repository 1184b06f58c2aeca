#include "probes/SystemStepProbes.h"
#include "tests/livestat/schedule/SchedulerFixture.h"
#include "tests/support/NameServer.h"

namespace mirovane {
namespace {

using Lines = std::vector<std::string>;

/// What this computer cannot find out must neither empty a field nor turn a device Off.
class OutageTest : public test::SchedulerFixture {
protected:
    void runs(int count) {
        for (int i = 0; i < count; ++i)
            run();
    }
    std::int32_t addComputer(const std::string& name, const std::string& address) {
        const std::int32_t recID = add(DeviceType::Computer, address);
        doc.edit(device(recID), [&](CHardware& record) {
            record.Name = name;
            record.State = DeviceState::On;
        });
        return recID;
    }
    /// The log without the lines about runs.
    Lines outages() {
        Lines lines = logged();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Live Stat can"); });
        return lines;
    }
};

TEST_F(OutageTest, AStationWithoutTheRightToPingChangesNoState) {
    const std::int32_t on = add(DeviceType::Printer, "127.0.0.1");
    add(DeviceType::Printer, "127.0.0.2");
    doc.edit(device(on), [](CHardware& record) { record.State = DeviceState::On; });
    probes.refuseEchoes("no permission; run setcap");
    scheduler->toggle();
    runs(4);
    EXPECT_EQ(device(on).State, DeviceState::On);
    EXPECT_FALSE(host.pending) << "nothing to save";
    EXPECT_EQ(outages(),
              Lines{"Live Stat cannot send pings (127.0.0.1: no permission; run setcap). What depends "
                    "on it stays as it is."});
    probes.allowEchoes();
    runs(4);
    EXPECT_EQ(device(on).State, DeviceState::Off) << "now it was asked";
    EXPECT_EQ(outages().size(), 1U);
}

TEST_F(OutageTest, AnOutageIsSaidOnceHoweverManyDevicesAndForgottenWithThem) {
    for (int i = 0; i < 3; ++i)
        addComputer("pc" + std::to_string(i), "127.0.0." + std::to_string(i + 1));
    for (const char* name : {"pc0", "pc1", "pc2"})
        probes.cannotAsk(name, AskedThrough::NameService, "the name server does not answer");
    scheduler->toggle();
    runs(8);
    EXPECT_EQ(outages().size(), 1U);
    EXPECT_EQ(device(1).IPAddress, "127.0.0.1");
    EXPECT_EQ(device(1).State, DeviceState::On);

    probes.canAsk("pc0");
    runs(4);
    const Lines over = outages();
    ASSERT_EQ(over.size(), 2U) << "over for the one; the others' next steps say that it is not";
    EXPECT_EQ(over[0], "Live Stat can look up names again (the name server does not answer: no longer).");
    doc.removeDevices(std::array{DeviceKey{2}, DeviceKey{3}});
    scheduler->rebind();
    runs(4);
    addComputer("pc1", "127.0.0.9");
    logged();
    runs(4);
    EXPECT_EQ(outages().size(), 1U) << "a new outage: nobody waited for the end of the old one";
}

TEST_F(OutageTest, OneLostPacketIsNoOff) {
    struct Case {
        std::int32_t before;
        int lost;
        int confirmOff;
        std::int32_t after;
        std::size_t pings;
    };
    for (const Case& c : {Case{DeviceState::On, 1, 1, DeviceState::On, 2},
                          {DeviceState::On, 2, 1, DeviceState::Off, 2},
                          {DeviceState::On, 3, 3, DeviceState::On, 4},
                          {DeviceState::On, 1, 0, DeviceState::Off, 1},
                          {DeviceState::Def, 1, 5, DeviceState::Off, 1},
                          {DeviceState::Off, 1, 5, DeviceState::Off, 1}}) {
        liveStatSettings.LSConfirmOff = c.confirmOff;
        pool(1);
        const std::int32_t recID = add(DeviceType::Printer, "127.0.0.1");
        doc.edit(device(recID), [&](CHardware& record) { record.State = c.before; });
        probes.answer("127.0.0.1");
        probes.lose("127.0.0.1", c.lost);
        const std::size_t before = probes.pinged().size();
        scheduler->toggle();
        pass(3002); // the one step
        EXPECT_EQ(device(recID).State, c.after) << c.before << c.lost << c.confirmOff;
        EXPECT_EQ(probes.pinged().size() - before, c.pings);
        scheduler->disableNow();
        doc.removeDevices(std::array{DeviceKey{recID}});
    }
}

TEST_F(OutageTest, LiveStatNowAloneSignsNoOwnersRecord) {
    addPrinters(1);
    const CHardware& owner = *doc.findSpecial(SpecialType::LiveStatOwnerRecord);
    doc.edit(owner, [](CHardware& record) { record.Modified = 77; });
    select(1);
    scheduler->performNow();
    runs(3);
    EXPECT_EQ(device(1).State, DeviceState::Off);
    EXPECT_EQ(owner.Modified, 77) << "the owner elsewhere may have died";
}

TEST_F(OutageTest, AStationThatCannotSaveTheDatafileTakesNothingOver) {
    addPrinters(1);
    const CHardware& owner = *doc.findSpecial(SpecialType::LiveStatOwnerRecord);
    doc.edit(owner, [](CHardware& record) {
        record.State = 1;
        record.Name = "other";
    });
    host.answer = true;
    host.saved = SaveResult::Failed;
    EXPECT_EQ(scheduler->toggle()->kind, StartRefusal::Kind::NotWritable);
    EXPECT_FALSE(scheduler->enabled());
    EXPECT_EQ(owner.Name, "other") << "it goes on there, and nobody else would learn of a claim here";
    EXPECT_EQ(logged().size(), 1U);
    host.saved = SaveResult::Saved;
    EXPECT_FALSE(scheduler->toggle());
    EXPECT_EQ(owner.Name, "host");
}

TEST_F(OutageTest, ABrokenPatternIsReportedAgainInTheNextDatafile) {
    add(DeviceType::Printer, "127.0.0.1");
    rule(DeviceType::Printer, 6, Action::SnmpGet, "$mvI public 1.3");
    setCriteria(doc, DeviceType::Printer, 6, CriteriaColumn::SearchFor, "(laser");
    probes.agent("127.0.0.1", "public", "1.3", {SNMPAnswer::Kind::Value, "LaserJet", 0});
    const auto reports = [this] {
        scheduler->toggle();
        runs(4);
        scheduler->reset();
        const Lines lines = logged();
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.find("is not a valid pattern") != std::string::npos;
        });
    };
    EXPECT_EQ(reports(), 1);
    EXPECT_EQ(reports(), 1);
}

/// The same with a real resolver, whose server falls silent and comes back.
TEST_F(OutageTest, TheNameServerGoesAwayAndReturnsUnderLiveStat) {
    const OwnNetwork network;
    if (network.refused())
        GTEST_SKIP() << *network.refused();
    test::NameServer names({{"pc7", {"127.0.0.9", "127.0.0.7"}}});
    if (names.refused())
        GTEST_SKIP() << *names.refused();
    CSystemStepProbes real({}, {"host", "user"});
    if (const auto reason = real.hosts().echoUnusable())
        GTEST_SKIP() << *reason;
    const FeatureServices services{doc, timers, log, clock};
    CLiveStatScheduler station(services, real.all(), workers, host, liveStatSettings);
    const std::int32_t known = addComputer("pc7", "127.0.0.5");
    const std::int32_t gone = addComputer("gone", "127.0.0.6");
    for (const std::int32_t type : {DeviceType::Computer})
        rule(type, 3, Action::DoNothing, "");
    station.toggle();
    runs(4);
    EXPECT_EQ(device(known).IPAddress, "127.0.0.9") << "the first one that the server gives";
    EXPECT_EQ(device(gone).IPAddress, "") << "the server says that there is no such name";
    EXPECT_EQ(outages(), Lines{});

    names.goAway();
    doc.edit(device(gone), [](CHardware& record) { record.IPAddress = "127.0.0.6"; });
    runs(4);
    EXPECT_EQ(device(known).IPAddress, "127.0.0.9");
    EXPECT_EQ(device(known).State, DeviceState::On) << "its address answers";
    EXPECT_EQ(device(gone).IPAddress, "127.0.0.6");
    EXPECT_EQ(outages().size(), 1U);

    names.comeBack();
    runs(4);
    EXPECT_EQ(device(gone).IPAddress, "");
    EXPECT_EQ(outages(),
              Lines{"Live Stat can look up names again (the name server does not answer: no longer)."});
}

} // namespace
} // namespace mirovane
