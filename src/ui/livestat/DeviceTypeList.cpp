#include "ui/livestat/DeviceTypeList.h"

#include "model/records/Hardware.h"

#include <charconv>

namespace mirovane {

namespace {

constexpr std::size_t codeWidth = 5;
constexpr std::size_t entryWidth = 80;

} // namespace

std::vector<std::string> deviceTypeEntries() {
    std::vector<std::string> entries;
    for (std::int32_t type = DeviceType::Jack; type <= DeviceType::Wireless; ++type) {
        std::string entry(typeName(type));
        const std::string code = std::to_string(type);
        entry.append(entryWidth - entry.size() - code.size(), ' ').append(code);
        entries.push_back(entry);
    }
    return entries;
}

std::int32_t typeOfEntry(std::string_view entry) {
    std::string_view code = entry.substr(entry.size() - std::min(entry.size(), codeWidth));
    code.remove_prefix(std::min(code.find_first_not_of(' '), code.size()));
    std::int32_t type = 0;
    std::from_chars(code.data(), code.data() + code.size(), type);
    return type;
}

} // namespace mirovane
