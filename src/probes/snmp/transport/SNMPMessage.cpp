#include "probes/snmp/transport/SNMPMessage.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace mirovane {

namespace {

static_assert(snmpMessageVersion == SNMP_VERSION_1);
static_assert(longestSnmpOid == MAX_OID_LEN);

/// The library writes its error texts into variables of the process and logs to standard error as long as
/// no log handler is set.
std::unique_lock<std::mutex> libraryTurn() {
    static std::mutex mutex;
    static const bool quiet = [] {
        return netsnmp_register_loghandler(NETSNMP_LOGHANDLER_NONE, LOG_DEBUG) != nullptr;
    }();
    static_cast<void>(quiet);
    return std::unique_lock(mutex);
}

constexpr std::uint8_t sequenceTag = ASN_SEQUENCE | ASN_CONSTRUCTOR;

/// The library looks at the byte after a header before it looks whether there is one.
constexpr std::size_t padding = 32;

/// A copy of the datagram with the position up to which it has been read. Every take...() moves on only when
/// it succeeds.
class SNMPReader {
public:
    SNMPReader(std::uint8_t* at, std::size_t left) : at_(at), left_(left) {}

    std::size_t left() const { return left_; }
    std::uint8_t type() const { return left_ > 0 ? *at_ : 0; }

    /// Enters a sequence or another thing that holds things: what follows is its content.
    bool enter(std::uint8_t expected) {
        std::size_t length = left_;
        std::uint8_t type = 0;
        std::uint8_t* content = left_ > 0 ? asn_parse_header(at_, &length, &type) : nullptr;
        if (content == nullptr || type != expected || !within(content, length))
            return false;
        at_ = content;
        left_ = length;
        return true;
    }

    bool takeInteger(std::int32_t& value) {
        long number = 0;
        if (!numberFits() || !take(asn_parse_int, ASN_INTEGER, &number) || number < INT32_MIN ||
            number > INT32_MAX)
            return false;
        value = static_cast<std::int32_t>(number);
        return true;
    }

    bool takeUnsigned(std::uint32_t& value) {
        unsigned long number = 0;
        if (!numberFits() || !take(asn_parse_unsigned_int, type(), &number) || number > UINT32_MAX)
            return false;
        value = static_cast<std::uint32_t>(number);
        return true;
    }

    bool takeCounter64(SNMPValue& value) {
        counter64 number{};
        if (!take(asn_parse_unsigned_int64, ASN_COUNTER64, &number))
            return false;
        value.high = static_cast<std::uint32_t>(number.high);
        value.low = static_cast<std::uint32_t>(number.low);
        return true;
    }

    /// The content of any string-like thing.
    bool takeOctets(std::string& octets) {
        if (left_ == 0)
            return false;
        std::size_t rest = left_;
        std::uint8_t type = 0;
        octets.resize(left_);
        std::size_t length = octets.size();
        const auto parse = this->type() == ASN_BIT_STR ? asn_parse_bitstring : asn_parse_string;
        std::uint8_t* next =
            parse(at_, &rest, &type, reinterpret_cast<std::uint8_t*>(octets.data()), &length);
        if (!moveTo(next, rest))
            return false;
        octets.resize(length);
        return true;
    }

    bool takeOid(SNMPOid& value) {
        std::array<oid, MAX_OID_LEN> parts{};
        std::size_t count = parts.size();
        std::size_t rest = left_;
        std::uint8_t type = 0;
        if (left_ == 0 || *at_ != ASN_OBJECT_ID)
            return false;
        std::uint8_t* const next = asn_parse_objid(at_, &rest, &type, parts.data(), &count);
        if (!moveTo(next, rest))
            return false;
        count = std::max<std::size_t>(count, MIN_OID_LEN); // an empty identifier is 0.0, and counted as one
        value.resize(count);
        std::transform(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(count), value.begin(),
                       [](oid part) { return static_cast<std::uint32_t>(part); });
        return true;
    }

    /// Splits off the next thing, whatever it is.
    std::optional<SNMPReader> takeThing() {
        std::size_t length = left_;
        std::uint8_t type = 0;
        std::uint8_t* content = left_ > 0 ? asn_parse_header(at_, &length, &type) : nullptr;
        if (content == nullptr || !within(content, length))
            return std::nullopt;
        const auto size = static_cast<std::size_t>(content - at_) + length;
        const SNMPReader thing(at_, size);
        at_ += size;
        left_ -= size;
        return thing;
    }

private:
    /// The library cuts a longer number down to 32 bits, and so to another number, without a word.
    bool numberFits() const {
        constexpr std::size_t most = 4;
        std::size_t length = left_;
        std::uint8_t type = 0;
        const std::uint8_t* content = left_ > 0 ? asn_parse_header(at_, &length, &type) : nullptr;
        if (content == nullptr || !within(content, length))
            return false;
        return length <= most || (length == most + 1 && *content == 0);
    }

    template <typename Parse, typename Number>
    bool take(Parse parse, std::uint8_t expected, Number* number) {
        std::size_t rest = left_;
        std::uint8_t type = 0;
        if (left_ == 0 || *at_ != expected)
            return false;
        std::uint8_t* const next = parse(at_, &rest, &type, number, sizeof *number);
        return moveTo(next, rest);
    }

    bool within(const std::uint8_t* content, std::size_t length) const {
        return content >= at_ && content <= at_ + left_ &&
               length <= left_ - static_cast<std::size_t>(content - at_);
    }

    bool moveTo(std::uint8_t* next, std::size_t rest) {
        if (next == nullptr || !within(next, rest))
            return false;
        at_ = next;
        left_ = rest;
        return true;
    }

    std::uint8_t* at_;
    std::size_t left_;
};

bool readValue(SNMPReader reader, SNMPValue& value) {
    value.syntax = SNMPSyntax{reader.type()};
    switch (value.syntax) {
    case SNMPSyntax::Integer:
        return reader.takeInteger(value.integer);
    case SNMPSyntax::Counter32:
    case SNMPSyntax::Gauge32:
    case SNMPSyntax::TimeTicks:
    case SNMPSyntax::UnsignedInteger32:
        return reader.takeUnsigned(value.unsignedNumber);
    case SNMPSyntax::Counter64:
        return reader.takeCounter64(value);
    case SNMPSyntax::Bits:
    case SNMPSyntax::Octets:
    case SNMPSyntax::Opaque:
    case SNMPSyntax::IPAddr:
    case SNMPSyntax::NsapAddress:
        return reader.takeOctets(value.octets);
    case SNMPSyntax::ObjectIdentifier:
        return reader.takeOid(value.oid);
    default:
        return true;
    }
}

bool readBinding(SNMPReader& list, SNMPBinding& binding) {
    auto pair = list.takeThing();
    if (!pair || !pair->enter(sequenceTag) || !pair->takeOid(binding.name))
        return false;
    const auto value = pair->takeThing();
    return value && readValue(*value, binding.value);
}

bool readHead(SNMPReader& reader, SNMPMessage& message) {
    std::int32_t version = 0;
    if (!reader.enter(sequenceTag) || !reader.takeInteger(version) || version != snmpMessageVersion ||
        reader.type() != ASN_OCTET_STR || !reader.takeOctets(message.context.community))
        return false;
    SNMPPdu& pdu = message.pdu;
    pdu.type = reader.type();
    return pdu.type != SNMP_MSG_TRAP && reader.enter(static_cast<std::uint8_t>(pdu.type)) &&
           reader.takeInteger(pdu.requestId) && reader.takeInteger(pdu.errorStatus) &&
           reader.takeInteger(pdu.errorIndex);
}

void readBindings(SNMPReader& reader, SNMPPdu& pdu) {
    pdu.damaged = !reader.enter(sequenceTag);
    while (!pdu.damaged && reader.left() > 0) {
        SNMPBinding binding;
        pdu.damaged = !readBinding(reader, binding);
        if (!pdu.damaged)
            pdu.bindings.push_back(std::move(binding));
    }
}

/// Writes from the message's end towards its front, as the library builds it: what is last in the message is
/// written first. Every function is false when memory runs out.
class SNMPBackwardWriter {
public:
    SNMPBackwardWriter() : bytes_(static_cast<std::uint8_t*>(std::malloc(usualSize))) {
        size_ = bytes_ != nullptr ? usualSize : 0;
    }
    ~SNMPBackwardWriter() { std::free(bytes_); }
    SNMPBackwardWriter(const SNMPBackwardWriter&) = delete;
    SNMPBackwardWriter& operator=(const SNMPBackwardWriter&) = delete;

    bool integer(long value) {
        return asn_realloc_rbuild_int(&bytes_, &size_, &used_, 1, ASN_INTEGER, &value, sizeof value) != 0;
    }
    bool octets(const std::string& text) {
        return asn_realloc_rbuild_string(&bytes_, &size_, &used_, 1, ASN_OCTET_STR,
                                         reinterpret_cast<const std::uint8_t*>(text.data()),
                                         text.size()) != 0;
    }
    bool nullOf(const SNMPOid& name) {
        std::array<oid, MAX_OID_LEN> parts{};
        std::copy(name.begin(), name.end(), parts.begin());
        const std::size_t end = used_;
        return asn_realloc_rbuild_null(&bytes_, &size_, &used_, 1, ASN_NULL) != 0 &&
               asn_realloc_rbuild_objid(&bytes_, &size_, &used_, 1, ASN_OBJECT_ID, parts.data(),
                                        name.size()) != 0 &&
               around(sequenceTag, end);
    }

    /// The header for what was written since `end` was used().
    bool around(std::uint8_t tag, std::size_t end) {
        return asn_realloc_rbuild_sequence(&bytes_, &size_, &used_, 1, tag, used_ - end) != 0;
    }

    std::size_t used() const { return used_; }
    SNMPBytes content() const { return {bytes_ + size_ - used_, bytes_ + size_}; }

private:
    static constexpr std::size_t usualSize = 256;

    std::uint8_t* bytes_; ///< the library's to move
    std::size_t size_ = 0;
    std::size_t used_ = 0;
};

bool encodable(const SNMPBinding& binding) {
    return binding.value.syntax == SNMPSyntax::Null && binding.name.size() >= MIN_OID_LEN &&
           binding.name.size() <= MAX_OID_LEN;
}

} // namespace

std::optional<SNMPBytes> encodeSnmpMessage(const SNMPMessage& message) {
    const SNMPPdu& pdu = message.pdu;
    if (!std::all_of(pdu.bindings.begin(), pdu.bindings.end(), encodable))
        return std::nullopt;
    SNMPBackwardWriter out;
    const auto turn = libraryTurn();
    bool built = true;
    for (auto binding = pdu.bindings.rbegin(); binding != pdu.bindings.rend() && built; ++binding)
        built = out.nullOf(binding->name);
    built = built && out.around(sequenceTag, 0) && out.integer(pdu.errorIndex) &&
            out.integer(pdu.errorStatus) && out.integer(pdu.requestId) &&
            out.around(static_cast<std::uint8_t>(pdu.type), 0) && out.octets(message.context.community) &&
            out.integer(snmpMessageVersion) && out.around(sequenceTag, 0);
    if (!built)
        return std::nullopt;
    return out.content();
}

std::optional<SNMPMessage> decodeSnmpMessage(std::span<const std::uint8_t> datagram) {
    SNMPBytes copy(datagram.size() + padding);
    std::copy(datagram.begin(), datagram.end(), copy.begin());
    SNMPReader reader(copy.data(), datagram.size());
    SNMPMessage message;
    const auto turn = libraryTurn();
    if (!readHead(reader, message))
        return std::nullopt;
    readBindings(reader, message.pdu);
    return message;
}

} // namespace mirovane
