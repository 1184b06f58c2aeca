#pragma once

#include "model/Document.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace mirovane {

/// The address that a device has, in host byte order. Its address field counts without its trailing ">>"
/// (text that the user keeps) and as a number: "010.0.0.5" is 10.0.0.5. Nothing for a record that is not a
/// device and for a device without an address.
std::optional<std::uint32_t> deviceAddress(const CHardware& record);

/// Answers "does a device already have this address?" in constant time, however many devices there are. Built
/// at the first question, then kept up with the document. Main thread only; the document outlives it.
class CKnownAddresses final : public DocumentObserver {
public:
    explicit CKnownAddresses(CMirovaneDoc& document);
    ~CKnownAddresses() override;
    CKnownAddresses(const CKnownAddresses&) = delete;
    CKnownAddresses& operator=(const CKnownAddresses&) = delete;

    /// Host byte order.
    bool contains(std::uint32_t address);

    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override;

private:
    void build();
    void insert(const CHardware& record);
    void erase(const CHardware& record);

    CMirovaneDoc& document_;
    std::unordered_map<std::uint32_t, std::size_t> devices_; ///< how many have this address
    bool built_ = false;
};

/// Puts a host that answered into the Discovered/Misc window. Saves nothing: one host is one save, a sweep's
/// many are one, too, and so are their lines in the log. Null when the datafile is full; the log says so.
const CHardware* addDiscoveredDevice(CMirovaneDoc& document, std::uint32_t address,
                                     const std::string& name = {});

} // namespace mirovane
