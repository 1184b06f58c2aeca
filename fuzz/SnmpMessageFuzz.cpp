// Datagrams as they may come from anywhere: decoded, turned into text, and back.

#include "probes/SNMPObject.h"
#include "probes/SnmpMessage.h"

#include <cstdlib>

using namespace mirovane;

namespace {

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto message = decodeSnmpMessage({data, size});
    if (!message) {
        return 0;
    }
    require(message->community.size() <= size);
    require(message->bindings.size() <= size);
    for (SnmpBinding& binding : message->bindings) {
        require(binding.name.size() <= longestSnmpOid);
        require(binding.value.octets.size() <= size);
        const auto name = SnmpOidToStr(binding.name);
        require(name.has_value());
        SNMPObject object(*name);
        require(*object.GetOid() == binding.name);
        object.SetFromValue(binding.value);
        require(!object.ValueText().empty() || binding.value.octets.empty());
        binding.value = {};
    }
    // What was decoded can be asked for again, and reads the same.
    message->type = static_cast<std::int32_t>(SnmpPduType::GetRequest);
    const auto encoded = encodeSnmpMessage(*message);
    require(encoded.has_value());
    const auto again = decodeSnmpMessage(*encoded);
    require(again && !again->damaged && again->requestId == message->requestId &&
            again->community == message->community && again->bindings.size() == message->bindings.size());
    for (std::size_t i = 0; i < again->bindings.size(); ++i) {
        require(again->bindings[i].name == message->bindings[i].name);
    }
    return 0;
}
