#include "model/discovered/DiscoveredOrder.h"

#include <algorithm>
#include <cstddef>

namespace mirovane {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The run of digits that starts at `at`, without leading zeros; `at` moves behind it.
std::string_view numberAt(std::string_view text, std::size_t& at) {
    const std::size_t start = at;
    while (at < text.size() && isDigit(text[at]))
        ++at;
    std::string_view number = text.substr(start, at - start);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

} // namespace

bool addressBefore(std::string_view a, std::string_view b) {
    if (a.empty() || b.empty())
        return !a.empty();
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const std::string_view m = numberAt(a, i);
            const std::string_view n = numberAt(b, j);
            if (m.size() != n.size())
                return m.size() < n.size();
            if (m != n)
                return m < n;
        } else if (a[i] != b[j]) {
            return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]);
        } else {
            ++i;
            ++j;
        }
    }
    return a.size() - i < b.size() - j;
}

std::vector<const CHardware*> discoveredDevices(const CMirovaneDoc& document, DiscoveredSorting sorting) {
    std::vector<const CHardware*> devices;
    for (const auto& record : document.records())
        if (record->inDiscovered())
            devices.push_back(record.get());
    if (sorting == DiscoveredSorting::ByAddress)
        std::ranges::stable_sort(devices, addressBefore,
                                 [](const CHardware* device) { return std::string_view(device->IPAddress); });
    return devices;
}

} // namespace mirovane
