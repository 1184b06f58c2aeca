#include "model/CriteriaEdit.h"
#include "platform/WorkerPool.h"
#include "tests/station/StationFixture.h"

#include <random>

// Live Stat on real threads while two stations edit, add, delete, save, reload and begin anew at random
// moments: whatever a step found out must be written to the device that it was asked about, or nowhere, and
// in the end no device may have been forgotten.

namespace mirovane::test {

namespace {

constexpr int names = 40;
constexpr int addressesEach = 4;

std::string nameOf(int number) {
    return "host" + std::to_string(number) + ".";
}
std::string addressOf(const std::string& name, unsigned place) {
    return name + std::to_string(place % addressesEach);
}

class LiveStatUnderLoadTest : public testing::Test {
protected:
    LiveStatUnderLoadTest() {
        for (int i = 0; i < names; ++i) {
            for (unsigned place = 0; place < addressesEach; ++place) {
                const std::string address = addressOf(nameOf(i), place);
                a.probes.agent(address, "public", "1.3", {SNMPAnswer::Kind::Value, "asked " + address, 0});
            }
        }
        Site maker(clock, timers, {"maker", "m"}, false);
        maker.station->newDatafile();
        rule(maker, 2, Action::DoNothing, ""); // no name is known here
        rule(maker, 4, Action::SnmpGet, "$mvI public 1.3");
        rule(maker, 6, Action::SetValue, "$mvN");
        for (int i = 0; i < names; ++i)
            add(maker, i);
        maker.station->saveDatafileAs(path);
        a.station->openDatafile(path);
        b.station->openDatafile(path);
        resize(8);
        a.station->features().liveStat().toggle();
    }
    ~LiveStatUnderLoadTest() override {
        releaseAll();
        a.station.reset();
    }

    static void rule(Site& site, int row, std::string_view command, const std::string& argument) {
        const auto set = [&](CriteriaColumn column, const std::string& text) {
            setCriteria(site.doc(), DeviceType::Computer, row, column, text);
        };
        set(CriteriaColumn::Command, std::string(command));
        set(CriteriaColumn::Argument, argument);
        set(CriteriaColumn::Condition, "On/Off");
    }
    void add(Site& site, int number) {
        site.doc().addDevice(
            DeviceType::Computer,
            [&](CHardware& device) {
                device.Name = nameOf(number);
                device.IPAddress = addressOf(device.Name, dice(addressesEach));
                device.Priority = 5;
            });
    }
    void resize(std::int32_t slots) {
        LiveStatSettings settings = a.station->features().liveStat().settings();
        settings.LSRunSec = 1;
        settings.LSNumPerRun = slots;
        a.station->features().liveStat().setSettings(settings);
    }
    unsigned dice(std::size_t faces) { return static_cast<unsigned>(random() % faces); }
    void pass(int milliseconds) { timers.advance(std::chrono::milliseconds(milliseconds)); }

    void hangSome() {
        for (int i = 0; i < 6; ++i) {
            hanging.push_back(addressOf(nameOf(static_cast<int>(dice(names))), dice(addressesEach)));
            a.probes.hang(hanging.back());
        }
    }
    void releaseAll() {
        for (const std::string& address : hanging)
            a.probes.letGo(address);
        hanging.clear();
    }

    const CHardware* anyDevice(Site& site) {
        std::vector<const CHardware*> devices;
        for (std::size_t i = 0; i < site.doc().size(); ++i)
            if (site.doc().at(i).isDevice())
                devices.push_back(&site.doc().at(i));
        return devices.empty() ? nullptr : devices[dice(devices.size())];
    }
    void moveOne(Site& site) {
        const CHardware* device = anyDevice(site);
        if (!device)
            return;
        const std::int32_t recID = device->RecID;
        const unsigned place = dice(addressesEach);
        updateDevices(*site.station, {&recID, 1},
                      [place](CHardware& moved) { moved.IPAddress = addressOf(moved.Name, place); });
    }
    void deleteOne(Site& site) {
        const CHardware* device = anyDevice(site);
        if (!device || site.doc().deviceCount() < names / 2)
            return;
        const std::int32_t recID = device->RecID;
        deleteDevices(*site.station, {&recID, 1});
    }
    /// A name that is there already makes a second device of that name: no harm, each has its own address.
    void addOne(Site& site) {
        if (site.doc().deviceCount() >= 2 * names)
            return;
        add(site, static_cast<int>(dice(names)));
        site.station->saveDatafile();
    }
    void nowOne() {
        if (const CHardware* device = anyDevice(a))
            a.doc().setSelected(*device, true);
        a.station->features().liveStat().performNow();
    }
    void beginAnew() {
        a.station->newDatafile();
        EXPECT_EQ(a.doc().deviceCount(), 0U);
        ASSERT_FALSE(a.station->openDatafile(path));
        if (!a.liveStat().enabled())
            a.station->features().liveStat().toggle();
    }

    void doSomething() {
        switch (dice(10)) {
        case 0:
            return hangSome();
        case 1:
            return releaseAll();
        case 2:
            return moveOne(a);
        case 3:
            return moveOne(b);
        case 4:
            return deleteOne(dice(2) == 0 ? a : b);
        case 5:
            return addOne(dice(2) == 0 ? a : b);
        case 6:
            return resize(static_cast<std::int32_t>(1 + dice(12)));
        case 7:
            return nowOne();
        case 8:
            return dice(4) == 0 ? beginAnew() : pass(2100); // the other station's file is read
        default:
            return pass(1100);
        }
    }

    /// Everything that a step wrote is about the device that has it.
    void expectNothingWentAstray(Site& site) {
        for (std::size_t i = 0; i < site.doc().size(); ++i) {
            const CHardware& device = site.doc().at(i);
            if (!device.isDevice())
                continue;
            EXPECT_TRUE(device.Comment.empty() || device.Comment == device.Name) << device.Comment;
            EXPECT_TRUE(device.MACAddress.empty() || device.MACAddress.starts_with("asked " + device.Name))
                << device.Name << " " << device.MACAddress;
        }
    }
    /// Devices that no step has told about yet as they are now.
    std::string forgotten() {
        std::string texts;
        for (std::size_t i = 0; i < a.doc().size(); ++i) {
            const CHardware& device = a.doc().at(i);
            if (device.isDevice() &&
                (device.Comment != device.Name || device.MACAddress != "asked " + device.IPAddress))
                texts +=
                    device.IPAddress + " has \"" + device.MACAddress + "\" and \"" + device.Comment + "\"\n";
        }
        return texts;
    }
    TestFolder folder;
    std::string path = folder.file("floor.mv");
    FakeClock clock;
    FakeTimers timers{clock};
    CWorkerPool threads{1};
    std::mt19937 random{20261122};
    Site a{clock, timers, {"A-HOST", "a-user"}, false, &threads};
    Site b{clock, timers, {"B-HOST", "b-user"}, false};
    std::vector<std::string> hanging;
};

TEST_F(LiveStatUnderLoadTest, NoOutcomeIsLostAndNoneGoesToAnotherDevice) {
    a.dialogs.answer = b.dialogs.answer = true;
    for (int i = 0; i < 600; ++i) {
        doSomething();
        pass(static_cast<int>(dice(30)));
        expectNothingWentAstray(a);
        expectNothingWentAstray(b);
        if (HasFailure())
            return;
    }
    releaseAll();
    resize(8);
    for (int i = 0; i < 500 && !forgotten().empty(); ++i) {
        pass(1000);
        ASSERT_TRUE(threads.waitUntilIdle(std::chrono::seconds(20)));
    }
    EXPECT_EQ(forgotten(), "") << a.log.lines().back().text;
    EXPECT_GE(a.doc().deviceCount(), static_cast<std::size_t>(names / 2 - 1));
}

} // namespace

} // namespace mirovane::test
