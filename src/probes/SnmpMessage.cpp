#include "probes/SnmpMessage.h"

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
class Reader {
public:
    Reader(std::uint8_t* at, std::size_t left) : at_(at), left_(left) {}

    std::size_t left() const { return left_; }
    std::uint8_t type() const { return left_ > 0 ? *at_ : 0; }

    /// Enters a sequence or another thing that holds things: what follows is its content.
    bool enter(std::uint8_t expected) {
        std::size_t length = left_;
        std::uint8_t type = 0;
        std::uint8_t* content = left_ > 0 ? asn_parse_header(at_, &length, &type) : nullptr;
        if (content == nullptr || type != expected || !within(content, length)) {
            return false;
        }
        at_ = content;
        left_ = length;
        return true;
    }

    bool takeInteger(std::int32_t& value) {
        long number = 0;
        if (!take(asn_parse_int, ASN_INTEGER, &number) || number < INT32_MIN || number > INT32_MAX) {
            return false;
        }
        value = static_cast<std::int32_t>(number);
        return true;
    }

    bool takeUnsigned(std::uint32_t& value) {
        unsigned long number = 0;
        if (!take(asn_parse_unsigned_int, type(), &number) || number > UINT32_MAX) {
            return false;
        }
        value = static_cast<std::uint32_t>(number);
        return true;
    }

    bool takeCounter64(SnmpValue& value) {
        counter64 number{};
        if (!take(asn_parse_unsigned_int64, ASN_COUNTER64, &number)) {
            return false;
        }
        value.high = static_cast<std::uint32_t>(number.high);
        value.low = static_cast<std::uint32_t>(number.low);
        return true;
    }

    /// The content of any string-like thing.
    bool takeOctets(std::string& octets) {
        if (left_ == 0) {
            return false;
        }
        std::size_t rest = left_;
        std::uint8_t type = 0;
        octets.resize(left_);
        std::size_t length = octets.size();
        const auto parse = this->type() == ASN_BIT_STR ? asn_parse_bitstring : asn_parse_string;
        std::uint8_t* next =
            parse(at_, &rest, &type, reinterpret_cast<std::uint8_t*>(octets.data()), &length);
        if (!moveTo(next, rest)) {
            return false;
        }
        octets.resize(length);
        return true;
    }

    bool takeOid(SnmpOid& value) {
        std::array<oid, MAX_OID_LEN> parts{};
        std::size_t count = parts.size();
        std::size_t rest = left_;
        std::uint8_t type = 0;
        if (left_ == 0 || *at_ != ASN_OBJECT_ID) {
            return false;
        }
        std::uint8_t* const next = asn_parse_objid(at_, &rest, &type, parts.data(), &count);
        if (!moveTo(next, rest)) {
            return false;
        }
        count = std::max<std::size_t>(count, MIN_OID_LEN); // an empty identifier is 0.0, and counted as one
        value.resize(count);
        std::transform(parts.begin(), parts.begin() + static_cast<std::ptrdiff_t>(count), value.begin(),
                       [](oid part) { return static_cast<std::uint32_t>(part); });
        return true;
    }

    /// Splits off the next thing, whatever it is.
    std::optional<Reader> takeThing() {
        std::size_t length = left_;
        std::uint8_t type = 0;
        std::uint8_t* content = left_ > 0 ? asn_parse_header(at_, &length, &type) : nullptr;
        if (content == nullptr || !within(content, length)) {
            return std::nullopt;
        }
        const auto size = static_cast<std::size_t>(content - at_) + length;
        const Reader thing(at_, size);
        at_ += size;
        left_ -= size;
        return thing;
    }

private:
    template <typename Parse, typename Number>
    bool take(Parse parse, std::uint8_t expected, Number* number) {
        std::size_t rest = left_;
        std::uint8_t type = 0;
        if (left_ == 0 || *at_ != expected) {
            return false;
        }
        std::uint8_t* const next = parse(at_, &rest, &type, number, sizeof *number);
        return moveTo(next, rest);
    }

    bool within(const std::uint8_t* content, std::size_t length) const {
        return content >= at_ && content <= at_ + left_ &&
               length <= left_ - static_cast<std::size_t>(content - at_);
    }

    bool moveTo(std::uint8_t* next, std::size_t rest) {
        if (next == nullptr || !within(next, rest)) {
            return false;
        }
        at_ = next;
        left_ = rest;
        return true;
    }

    std::uint8_t* at_;
    std::size_t left_;
};

bool readValue(Reader reader, SnmpValue& value) {
    value.syntax = SnmpSyntax{reader.type()};
    switch (value.syntax) {
    case SnmpSyntax::Integer:
        return reader.takeInteger(value.integer);
    case SnmpSyntax::Counter32:
    case SnmpSyntax::Gauge32:
    case SnmpSyntax::TimeTicks:
    case SnmpSyntax::UnsignedInteger32:
        return reader.takeUnsigned(value.unsignedNumber);
    case SnmpSyntax::Counter64:
        return reader.takeCounter64(value);
    case SnmpSyntax::Bits:
    case SnmpSyntax::Octets:
    case SnmpSyntax::Opaque:
    case SnmpSyntax::IPAddr:
    case SnmpSyntax::NsapAddress:
        return reader.takeOctets(value.octets);
    case SnmpSyntax::ObjectIdentifier:
        return reader.takeOid(value.oid);
    default:
        return true;
    }
}

bool readBinding(Reader& list, SnmpBinding& binding) {
    auto pair = list.takeThing();
    if (!pair || !pair->enter(sequenceTag) || !pair->takeOid(binding.name)) {
        return false;
    }
    const auto value = pair->takeThing();
    return value && readValue(*value, binding.value);
}

bool readHead(Reader& reader, SnmpMessage& message) {
    std::int32_t version = 0;
    if (!reader.enter(sequenceTag) || !reader.takeInteger(version) || version != snmpMessageVersion ||
        reader.type() != ASN_OCTET_STR || !reader.takeOctets(message.community)) {
        return false;
    }
    message.type = reader.type();
    return message.type != SNMP_MSG_TRAP && reader.enter(static_cast<std::uint8_t>(message.type)) &&
           reader.takeInteger(message.requestId) && reader.takeInteger(message.errorStatus) &&
           reader.takeInteger(message.errorIndex);
}

void readBindings(Reader& reader, SnmpMessage& message) {
    message.damaged = !reader.enter(sequenceTag);
    while (!message.damaged && reader.left() > 0) {
        SnmpBinding binding;
        message.damaged = !readBinding(reader, binding);
        if (!message.damaged) {
            message.bindings.push_back(std::move(binding));
        }
    }
}

/// Written from its end towards its front, as the library builds: what stands last in the message comes
/// first. Every function is false when memory runs out.
class BackwardBuffer {
public:
    BackwardBuffer() : bytes_(static_cast<std::uint8_t*>(std::malloc(usualSize))) {
        size_ = bytes_ != nullptr ? usualSize : 0;
    }
    ~BackwardBuffer() { std::free(bytes_); }
    BackwardBuffer(const BackwardBuffer&) = delete;
    BackwardBuffer& operator=(const BackwardBuffer&) = delete;

    bool integer(long value) {
        return asn_realloc_rbuild_int(&bytes_, &size_, &used_, 1, ASN_INTEGER, &value, sizeof value) != 0;
    }
    bool octets(const std::string& text) {
        return asn_realloc_rbuild_string(&bytes_, &size_, &used_, 1, ASN_OCTET_STR,
                                         reinterpret_cast<const std::uint8_t*>(text.data()),
                                         text.size()) != 0;
    }
    bool nullOf(const SnmpOid& name) {
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
    SnmpBytes content() const { return {bytes_ + size_ - used_, bytes_ + size_}; }

private:
    static constexpr std::size_t usualSize = 256;

    std::uint8_t* bytes_; ///< the library's to move
    std::size_t size_ = 0;
    std::size_t used_ = 0;
};

bool encodable(const SnmpMessage& message) {
    return std::all_of(message.bindings.begin(), message.bindings.end(), [](const SnmpBinding& binding) {
        return binding.value.syntax == SnmpSyntax::Null && binding.name.size() >= MIN_OID_LEN &&
               binding.name.size() <= MAX_OID_LEN;
    });
}

} // namespace

std::optional<SnmpBytes> encodeSnmpMessage(const SnmpMessage& message) {
    if (!encodable(message)) {
        return std::nullopt;
    }
    BackwardBuffer out;
    const auto turn = libraryTurn();
    bool built = true;
    for (auto binding = message.bindings.rbegin(); binding != message.bindings.rend() && built; ++binding) {
        built = out.nullOf(binding->name);
    }
    built = built && out.around(sequenceTag, 0) && out.integer(message.errorIndex) &&
            out.integer(message.errorStatus) && out.integer(message.requestId) &&
            out.around(static_cast<std::uint8_t>(message.type), 0) && out.octets(message.community) &&
            out.integer(snmpMessageVersion) && out.around(sequenceTag, 0);
    if (!built) {
        return std::nullopt;
    }
    return out.content();
}

std::optional<SnmpMessage> decodeSnmpMessage(std::span<const std::uint8_t> datagram) {
    SnmpBytes copy(datagram.size() + padding);
    std::copy(datagram.begin(), datagram.end(), copy.begin());
    Reader reader(copy.data(), datagram.size());
    SnmpMessage message;
    const auto turn = libraryTurn();
    if (!readHead(reader, message)) {
        return std::nullopt;
    }
    readBindings(reader, message);
    return message;
}

} // namespace mirovane
