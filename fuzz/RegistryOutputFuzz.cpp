// Any bytes as what Samba prints: whatever is read from them fits into what was printed.

#include "probes/registry/RegistryOutput.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace mirovane;

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

void exported(std::string_view output, const std::string& name) {
    const auto whole = parseExportedValue(output, name);
    if (!whole)
        return;
    require(whole->size() <= output.size());
    // More output behind it changes nothing: reading stops at the first one that is complete.
    require(parseExportedValue(std::string(output) + "\"v\"=dword:00000001\n", name) == whole);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    const auto value = parsePrintedValue(output);
    require(!value || !value->data || value->data->size() <= output.size());
    if (const auto names = parseSubKeys(output)) {
        std::size_t total = 0;
        for (const std::string& name : *names) {
            require(!name.empty() && name.find_first_of("\\\n") == name.npos);
            total += name.size();
        }
        require(total <= output.size());
    }
    exported(output, "");
    exported(output, "v");
    return 0;
}
