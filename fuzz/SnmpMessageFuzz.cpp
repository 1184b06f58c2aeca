// Datagrams as they may come from anywhere: decoded, turned into text, and back.

#include "probes/snmp/SNMPObject.h"
#include "probes/snmp/transport/SNMPMessage.h"

#include <cstdlib>

using namespace mirovane;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto message = decodeSnmpMessage({data, size});
    if (!message)
        return 0;
    SNMPPdu& pdu = message->pdu;
    require(message->context.community.size() <= size);
    require(pdu.bindings.size() <= size);
    for (SNMPBinding& binding : pdu.bindings) {
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
    pdu.type = static_cast<std::int32_t>(SNMPPduType::GetRequest);
    const auto encoded = encodeSnmpMessage(*message);
    require(encoded.has_value());
    const auto again = decodeSnmpMessage(*encoded);
    require(again && !again->pdu.damaged && again->pdu.requestId == pdu.requestId &&
            again->context == message->context && again->pdu.bindings.size() == pdu.bindings.size());
    for (std::size_t i = 0; i < pdu.bindings.size(); ++i)
        require(again->pdu.bindings[i].name == pdu.bindings[i].name);
    return 0;
}
