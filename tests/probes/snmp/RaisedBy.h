#pragma once

#include "probes/snmp/SNMPException.h"

#include <functional>
#include <memory>
#include <string>

namespace mirovane::test {

/// What the SNMP layer raises in it; null when it raises nothing.
inline std::unique_ptr<SNMPException> raisedBy(const std::function<void()>& what) {
    try {
        what();
    } catch (SNMPException* raised) {
        return std::unique_ptr<SNMPException>(raised);
    }
    return nullptr;
}

inline std::string messageOf(const std::function<void()>& what) {
    const auto raised = raisedBy(what);
    return raised ? raised->message() : "nothing raised";
}

} // namespace mirovane::test
