#pragma once

#include "model/Document.h"

#include <cstdint>
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

    /// The record list was replaced since the last call.
    bool takeReplaced();

private:
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override;
    void write(const CHardware& device);

    const CMirovaneDoc& doc_;
    CMessageLog& log_;
    std::unordered_map<std::int32_t, std::int32_t> states_; ///< by RecID
    bool begun_ = false;
    bool replaced_ = false;
};

} // namespace mirovane
