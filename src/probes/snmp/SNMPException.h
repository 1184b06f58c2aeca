#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace mirovane {

/// What every operation of the SNMP layer raises, by pointer: the thrower allocates it, the catcher deletes
/// it. Its texts are for developers; nothing shows them to the user.
class SNMPException {
public:
    static constexpr std::int32_t warning = 1; ///< any other severity is an error
    static constexpr std::int32_t error = 2;

    /// `source` is the class that raises; empty leaves the location empty. `code` is the transport's last
    /// error, 0 where none applies.
    SNMPException(std::string message, std::string_view source, unsigned line, std::int32_t code,
                  std::int32_t severity = error, std::unique_ptr<SNMPException> cause = nullptr);
    virtual ~SNMPException() = default;
    SNMPException(const SNMPException&) = delete;
    SNMPException& operator=(const SNMPException&) = delete;

    /// "error SNMP99: Could not get host by name. [SNMPRemoteAgent(35) v1.0 Aug 15 2013 09:53:30]"
    virtual std::string FullText() const;

    /// The same, and on a line of its own for each cause, indented, what led to it.
    virtual std::string ChainText() const;

    std::string Text() const;

    const std::string& message() const { return message_; }
    const std::string& location() const { return location_; }
    std::int32_t code() const { return code_; }
    std::int32_t severity() const { return severity_; }

private:
    std::string message_;
    std::string location_;
    std::int32_t code_;
    std::int32_t severity_;
    std::unique_ptr<SNMPException> cause_;
};

/// Throws an error raised by the class named `source`, on the caller's line.
[[noreturn]] void raiseSnmp(const char* source, const char* message, std::int32_t code,
                            int line = __builtin_LINE());

} // namespace mirovane
