#include "probes/snmp/SNMPException.h"

namespace mirovane {

namespace {

constexpr std::string_view layerVersion = " v1.0 ";

} // namespace

SNMPException::SNMPException(std::string message, std::string_view source, unsigned line, std::int32_t code,
                             std::int32_t severity, std::unique_ptr<SNMPException> cause)
    : message_(std::move(message)), code_(code), severity_(severity), cause_(std::move(cause)) {
    if (!source.empty()) {
        location_.append(source).append("(").append(std::to_string(line)).append(")");
        location_.append(layerVersion).append(__DATE__ " " __TIME__);
    }
}

std::string SNMPException::Text() const {
    return message_ + "." + (location_.empty() ? "" : " [" + location_ + "]");
}

std::string SNMPException::FullText() const {
    return (severity_ == warning ? "warning SNMP" : "error SNMP") + std::to_string(code_) + ": " + Text();
}

std::string SNMPException::ChainText() const {
    return FullText() + (cause_ ? "\n    " + cause_->ChainText() : "");
}

void raiseSnmp(const char* source, const char* message, std::int32_t code, int line) {
    throw new SNMPException(message, source, static_cast<unsigned>(line), code);
}

} // namespace mirovane
