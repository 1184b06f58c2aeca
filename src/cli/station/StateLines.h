#pragma once

#include "model/Document.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>

namespace mirovane {

/// Writes a line to the message log whenever a device goes On or Off: without a floor map the log is all that
/// an administrator sees. Also for changes that another station saved. Observes the document for its own
/// life.
class CStateLines final : public DocumentObserver {
public:
    CStateLines(const CMirovaneDoc& document, CMessageLog& log);
    ~CStateLines() override;
    CStateLines(const CStateLines&) = delete;
    CStateLines& operator=(const CStateLines&) = delete;

    /// From now on: what is in the document is known already.
    void begin();

    /// How many devices are Off.
    std::size_t off() const;

    /// The record list was replaced since the last call.
    bool takeReplaced();

private:
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override;
    void write(const CHardware& device);

    const CMirovaneDoc& doc_;
    CMessageLog& log_;
    std::unordered_map<std::int32_t, std::int32_t> states_; ///< by RecID
    mutable std::optional<std::size_t> off_;                ///< counted when it is asked for
    bool begun_ = false;
    bool replaced_ = false;
};

} // namespace mirovane
