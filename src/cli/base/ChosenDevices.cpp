#include "cli/base/ChosenDevices.h"

#include <map>

namespace mirovane {

namespace {

std::string describeAll(const std::vector<const CHardware*>& devices) {
    std::string text;
    for (const CHardware* device : devices)
        text += (text.empty() ? "" : device == devices.back() ? " and " : ", ") + describeDevice(*device);
    return text;
}

/// Collects the devices that have one of some record IDs out of all records.
class CChoice {
public:
    explicit CChoice(std::span<const std::int32_t> recIDs) {
        for (const std::int32_t recID : recIDs)
            byRecID_[recID];
    }

    void offer(const CHardware& record) {
        const auto wanted = record.isDevice() ? byRecID_.find(record.RecID) : byRecID_.end();
        if (wanted == byRecID_.end())
            return;
        wanted->second.push_back(&record);
        chosen_.push_back(&record);
    }

    ChosenDevices result(std::string_view what, const std::string& path) const {
        const std::string begin = std::string(what) + ": ";
        for (const auto& [recID, devices] : byRecID_)
            if (devices.empty())
                return EditRefusal{begin + "no device has the RecID " + std::to_string(recID),
                                   ExitStatus::No};
        for (const auto& [recID, devices] : byRecID_)
            if (devices.size() > 1)
                return EditRefusal{begin + describeAll(devices) + " have the same RecID " +
                                       std::to_string(recID) + "; mirovanectl check " + path +
                                       " --repair gives each its own",
                                   ExitStatus::FileFailed};
        return chosen_;
    }

private:
    std::map<std::int32_t, std::vector<const CHardware*>> byRecID_;
    std::vector<const CHardware*> chosen_; ///< in list order
};

} // namespace

std::string describeDevice(const CHardware& device) {
    const bool jack = floorCode(device.Type) == DeviceType::Jack;
    const std::string_view type = typeName(device.Type);
    return (type.empty() ? "type " + std::to_string(device.Type) : std::string(type)) + " \"" +
           printable(jack ? device.ToJack : device.Name) + "\"";
}

ChosenDevices chosenDevices(const Datafile::RecordList& records, std::span<const std::int32_t> recIDs,
                            std::string_view what, const std::string& path) {
    CChoice choice(recIDs);
    for (const auto& record : records)
        choice.offer(*record);
    return choice.result(what, path);
}

ChosenDevices chosenDevices(const CMirovaneDoc& document, std::span<const std::int32_t> recIDs,
                            std::string_view what, const std::string& path) {
    CChoice choice(recIDs);
    for (std::size_t place = 0; place < document.size(); ++place)
        choice.offer(document.at(place));
    return choice.result(what, path);
}

} // namespace mirovane
