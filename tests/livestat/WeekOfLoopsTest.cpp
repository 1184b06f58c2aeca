#include "probes/HostAddress.h"
#include "tests/livestat/SchedulerFixture.h"

#include <functional>
#include <map>
#include <random>

// A week of Live Stat over 500 devices on the simulated clock, beside a model that walks through the rules as
// people say them: one record after the other, one row after the other, nothing indexed, nothing shared with
// the program but the criteria's texts.

namespace mirovane {

namespace {

using Seconds = std::int64_t;

std::size_t dice(const std::string& what, Seconds period) {
    return std::hash<std::string>{}(what + "@" + std::to_string(period)) / 7;
}

// ---- what the network is like at a moment

bool answers(const std::string& host, Seconds now) {
    return dice(host, now / 7200) % 4 != 0;
}
std::string addressOf(const std::string& name, Seconds now) {
    const std::size_t number = dice(name, now / 86400);
    return "127.1." + std::to_string(number % 250) + "." + std::to_string(number / 250 % 250);
}
std::string modelAt(const std::string& host, Seconds now) {
    static const std::array<std::string, 3> models{"", "HP LaserJet 4250", "Copier 12"};
    return models[dice(host + "?", now / 10000) % models.size()];
}
/// Users come and go; a computer that is off is not reached.
LoggedOnUser userOf(const std::string& host, Seconds now) {
    const std::size_t number = dice(host + "!", now / 5000) % 4;
    if (number == 0)
        return {};
    return {number == 1 ? "" : "user" + std::to_string(number), number == 1 ? 0U : 1U, true};
}

class Network final : public HostProbes, public SnmpProbe, public RegistryProbes {
public:
    explicit Network(const Clock& clock) : clock_(clock) {}

    bool PingHost(const std::string& target, PingReply&, std::optional<std::uint32_t>&, std::uint8_t,
                  std::uint32_t, std::uint8_t, std::stop_token) override {
        return answers(target, now());
    }
    bool ResolveHost(const std::string& target, std::uint32_t& address, std::string&,
                     std::stop_token) override {
        address = *parseDottedAddress(addressOf(target, now()));
        return true;
    }
    std::optional<std::string> echoUnusable() override { return std::nullopt; }
    SnmpAnswer SnmpGet(const SnmpQuery& query, std::stop_token) override {
        const std::string value = modelAt(query.host, now());
        return {value.empty() ? SnmpAnswer::Kind::TimedOut : SnmpAnswer::Kind::Value, value, 0};
    }
    std::optional<std::string> snmpUnusable() override { return std::nullopt; }
    std::optional<std::string> ReadRegistryValue(const std::string&, const std::string&, std::stop_token,
                                                 std::string*) override {
        return std::nullopt;
    }
    LoggedOnUser LookUpLoggedOnUser(const std::string& host, std::stop_token, std::string*) override {
        return userOf(host, now());
    }
    std::string GetDefaultUserName(const std::string&, std::stop_token) override { return {}; }
    std::vector<std::string> takeTroubles() override { return {}; }

private:
    Seconds now() const { return std::chrono::system_clock::to_time_t(clock_.wall()); }
    const Clock& clock_;
};

// ---- the rules, plainly

class PlainModel {
public:
    PlainModel(const CMirovaneDoc& document, int slots, Seconds startMs, std::int64_t periodMs)
        : slots_(static_cast<std::size_t>(slots)),
          period_(periodMs),
          due_(startMs + periodMs),
          loopBegan_(startMs) {
        for (std::size_t i = 0; i < document.size(); ++i)
            records.push_back(document.at(i));
        for (const CHardware& record : records) {
            if (record.Type < -80)
                rows_[record.Type] = criteriaFromRecord(record);
        }
    }

    void advanceTo(std::int64_t ms) {
        for (; due_ <= ms; due_ = now_ + (slotCursor_ < 0 ? period_ : 1)) {
            now_ = due_;
            tick();
        }
    }
    bool stepInFlight() const { return static_cast<bool>(pending_); }

    std::vector<CHardware> records;
    std::vector<std::string> lines;

private:
    struct Slot {
        int record = -1;
        int row = -1;
    };
    struct Found {
        bool acted = true, failed = false;
        std::string text;
        std::int32_t state = 0;
    };

    Seconds seconds() const { return now_ / 1000; }

    void tick() {
        if (pending_)
            std::exchange(pending_, nullptr)();
        if (slotCursor_ >= static_cast<int>(slots_.size()) - 1) {
            if (devices_ > 0)
                report();
            devices_ = 0;
            slotCursor_ = -1;
            return;
        }
        Slot& slot = slots_[static_cast<std::size_t>(++slotCursor_)];
        if (slot.record >= 0) {
            slot.row = nextRow(slot.record, slot.row + 1);
            if (slot.row < 0)
                slot = {};
        }
        if (slot.record < 0)
            pick(slot);
        if (slot.record >= 0)
            start(slot.record, slot.row);
    }

    void report() {
        lines.push_back("Live Stat Priority " + std::to_string(threshold_) +
                        (threshold_ == 5 ? "" : " or higher") + ": Processing " + std::to_string(devices_) +
                        " device(s). Looped " + std::to_string(loops_) + " times. Last loop took " +
                        std::to_string(lastLoop_ / 1000) + " sec");
    }

    const CriteriaRow& criteria(const CHardware& device, int row) const {
        const std::int32_t type = device.Type > 1000 ? device.Type - 1000 : device.Type;
        return rows_.at(-(20 * type + 80 + row));
    }
    static std::string CHardware::*field(int row) {
        constexpr std::array<std::string CHardware::*, 12> fields{nullptr,
                                                                  &CHardware::Name,
                                                                  &CHardware::IPAddress,
                                                                  &CHardware::Username,
                                                                  &CHardware::MACAddress,
                                                                  &CHardware::ToJack,
                                                                  &CHardware::Comment,
                                                                  &CHardware::SlashText,
                                                                  &CHardware::BackslashText,
                                                                  &CHardware::HorzText,
                                                                  &CHardware::VertText,
                                                                  &CHardware::ToDo};
        return fields[static_cast<std::size_t>(row)];
    }

    int nextRow(int record, int row) const {
        const CHardware& device = records[static_cast<std::size_t>(record)];
        for (; row <= 11; ++row) {
            const bool kept = row > 0 && (device.*field(row)).ends_with(">>");
            if (criteria(device, row).Command != "Do Nothing" && !kept)
                return row;
        }
        return -1;
    }

    void pick(Slot& slot) {
        const int count = static_cast<int>(records.size());
        for (int steps = 0; steps < count; ++steps) {
            cursor_ = cursor_ + 1 < count ? cursor_ + 1 : 0;
            if (cursor_ == 0 && !std::exchange(atStart_, false)) {
                ++loops_;
                lastLoop_ = now_ - loopBegan_;
                loopBegan_ = now_;
                threshold_ = threshold_ > 1 ? threshold_ - 1 : 5;
            }
            const CHardware& device = records[static_cast<std::size_t>(cursor_)];
            bool held = false;
            for (const Slot& other : slots_)
                held = held || other.record == cursor_;
            if (device.Type < 1 || device.Type > 999 || device.Type == 13 || held ||
                device.Priority < threshold_)
                continue;
            const int row = nextRow(cursor_, 0);
            if (row >= 0) {
                slot = {cursor_, row};
                ++devices_;
            }
            return;
        }
    }

    void start(int record, int row) {
        CHardware& device = records[static_cast<std::size_t>(record)];
        const Found found = ask(device, row);
        if (found.acted)
            pending_ = [this, &device, row, found] {
                write(device, row, found);
            };
    }

    Found ask(const CHardware& device, int row) const {
        const CriteriaRow& rule = criteria(device, row);
        const bool may =
            row == 0 || rule.Condition == "On/Off" || device.State == (rule.Condition == "On" ? 1 : 2);
        if (rule.Command == "Match to Jack#")
            return plugged(device);
        if (rule.Command == "Ping") {
            const bool on = (!device.Name.empty() && device.Type == 2 && answers(device.Name, seconds())) ||
                            (!device.IPAddress.empty() && answers(device.IPAddress, seconds()));
            return {true, !on, "", on ? 1 : 2};
        }
        Found found{may, false, device.*field(row)};
        if (rule.Command == "NS Lookup" && !device.Name.empty())
            found.text = addressOf(device.Name, seconds());
        else if (rule.Command == "Set Value")
            found.text = device.Name + " seen";
        else if (rule.Command == "SNMPGet") {
            const std::string value = modelAt(device.IPAddress, seconds());
            found.failed = value.find("LaserJet") == std::string::npos;
            found.text = found.failed ? "" : value;
        } else if (rule.Command == "Who's Logon")
            logon(device, found);
        return found;
    }
    void logon(const CHardware& device, Found& found) const {
        const LoggedOnUser user =
            userOf("\\\\" + (device.Name.empty() ? device.IPAddress : device.Name), seconds());
        if (!user.reached)
            found.acted = false;
        else if (!user.name.empty())
            found.text = user.name;
        else if (found.text.starts_with("["))
            found.acted = false;
        else
            found.text = "[" + found.text + "]";
    }
    Found plugged(const CHardware& jack) const {
        for (const CHardware& other : records) {
            const bool device =
                other.Type >= 2 && other.Type != 13 && other.Type != 1013 && other.Type != 1001;
            if (device && !jack.ToJack.empty() && other.ToJack == jack.ToJack)
                return {true, false, "", other.State};
        }
        return {true, true, "", 0};
    }

    void write(CHardware& device, int row, const Found& found) const {
        const auto stamp = static_cast<TimeStamp>(seconds());
        if (row == 0) {
            if (device.State == found.state)
                return;
            device.State = found.state;
            if (device.StampsModified == device.Modified)
                device.StampsModified = stamp;
            device.Modified = stamp;
            return;
        }
        if (device.*field(row) != found.text) {
            device.*field(row) = found.text;
            device.Modified = stamp;
        }
        std::int32_t* const flag = row == 7 ? &device.SlashDraw : row == 11 ? &device.ReminderOn : nullptr;
        const std::int32_t wanted = found.failed ? 0 : 1; // the check boxes stand at 1
        if (flag && *flag != wanted) {
            *flag = wanted;
            device.Modified = stamp;
        }
    }

    std::map<std::int32_t, CriteriaRow> rows_;
    std::vector<Slot> slots_;
    std::int64_t period_, due_, now_ = 0, loopBegan_, lastLoop_ = 0;
    int slotCursor_ = -1, cursor_ = -1, threshold_ = 5, loops_ = 0, devices_ = 0;
    bool atStart_ = true;
    std::function<void()> pending_;
};

// ----

class WeekOfLoopsTest : public test::SchedulerFixture {
protected:
    static constexpr int deviceCount = 500;
    static constexpr std::int64_t hourMs = 3'600'000;

    WeekOfLoopsTest() {
        log.addListener([this](const std::string& line, bool) {
            if (const std::size_t at = line.find("Live Stat Priority"); at != std::string::npos)
                lines.push_back(line.substr(at));
        });
        rule(DeviceType::Computer, 6, Action::SetValue, "$mvN seen", "On");
        rule(DeviceType::Computer, 11, Action::SetValue, "$mvN seen", "Off");
        rule(DeviceType::Printer, 7, Action::SnmpGet, "$mvI public 1.3.6", "On");
        doc.setCriteria(DeviceType::Printer, 7, static_cast<int>(CriteriaColumn::SearchFor), "LASERJET");
        for (int i = 0; i < deviceCount; ++i)
            addDevice(i);
        liveStatSettings.LSRunSec = 60;
        liveStatSettings.LSNumPerRun = slots;
        liveStatSettings.LSIncludeMisc = false;
        scheduler = std::make_unique<CLiveStatScheduler>(doc, StepProbes{network, network, network}, workers,
                                                         timers, host, liveStatSettings);
    }

    void addDevice(int i) {
        constexpr std::array<std::int32_t, 6> types{DeviceType::Computer,       DeviceType::Printer,
                                                    DeviceType::Jack,           DeviceType::Switch,
                                                    DeviceType::LocationMarker, 1002};
        const std::int32_t type = types[random() % (i % 9 == 0 ? 6U : 4U)];
        doc.addDevice(type, [&](CHardware& device) {
            device.Name = i % 11 == 0 ? "" : "host" + std::to_string(i);
            device.IPAddress = "127.0.7." + std::to_string(i % 250);
            device.Priority = static_cast<std::int32_t>(1 + random() % 5);
            device.ToJack = i % 3 == 0 ? "" : "J" + std::to_string(random() % 150);
            device.Comment = i % 17 == 0 ? "mine>>" : "";
        });
    }

    /// A user's change, the same in both. Never between a step and its outcome: what happens then is another
    /// test's business.
    void editOne(PlainModel& model) {
        const std::size_t place = random() % model.records.size();
        const std::int32_t priority = static_cast<std::int32_t>(1 + random() % 5);
        const std::string jack = "J" + std::to_string(random() % 150);
        if (!doc.at(place).isDevice() || model.stepInFlight())
            return;
        doc.editByUser(doc.at(place), [&](CHardware& device) {
            device.Priority = priority;
            device.ToJack = jack;
        });
        model.records[place].Priority = priority;
        model.records[place].ToJack = jack;
        model.records[place].Modified = doc.now();
    }

    void expectSame(const PlainModel& model) {
        for (std::size_t i = 0; i < model.records.size(); ++i) {
            const CHardware& ours = doc.at(i);
            CHardware plain = model.records[i];
            if (!ours.isDevice())
                continue;
            plain.ReminderDate = ours.ReminderDate; // its rule is checked elsewhere
            ASSERT_EQ(ours, plain) << "device " << ours.RecID << ", type " << ours.Type;
        }
    }

    static constexpr int slots = 40;
    std::mt19937 random{20261122};
    Network network{clock};
    std::vector<std::string> lines;
};

TEST_F(WeekOfLoopsTest, EveryFieldAndEveryLineIsWhatTheRulesSay) {
    const auto startMs = std::int64_t{1'700'000'000} * 1000;
    scheduler->toggle();
    PlainModel model(doc, slots, startMs, 60'000);
    for (int hour = 1; hour <= 7 * 24; ++hour) {
        timers.advance(std::chrono::milliseconds(hourMs));
        model.advanceTo(startMs + hour * hourMs);
        expectSame(model);
        if (HasFatalFailure())
            return;
        editOne(model);
    }
    EXPECT_EQ(lines, model.lines);
    EXPECT_GT(scheduler->loops(), 25);
    EXPECT_GT(lines.size(), 9000U);
}

} // namespace

} // namespace mirovane
