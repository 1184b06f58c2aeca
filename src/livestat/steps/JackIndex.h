#pragma once

#include "model/Document.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace mirovane {

/// Names a jack that it is plugged into; jacks and location markers are not plugged anywhere.
bool isPlugged(const CHardware& record);

/// Two jack numbers are the same, whether or not either field is kept by the user.
bool sameJack(std::string_view one, std::string_view other);

/// Answers "which device is plugged into this jack?" without walking the list. Built at the first question,
/// because many sites have no jack at all, then kept up with the document. Main thread only.
class CJackIndex final : public DocumentObserver {
public:
    explicit CJackIndex(CMirovaneDoc& document);
    ~CJackIndex() override;
    CJackIndex(const CJackIndex&) = delete;
    CJackIndex& operator=(const CJackIndex&) = delete;

    /// State of the first device in list order, no jack and no location marker, whose `ToJack` is the
    /// jack's number. Nothing when no device is plugged in there, or the number is empty.
    std::optional<std::int32_t> stateAtJack(const std::string& jackNumber);

    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override;

private:
    void build();
    void insert(const CHardware& record);
    void erase(const CHardware& record);

    CMirovaneDoc& document_;
    std::unordered_multimap<std::size_t, std::int32_t>
        recIDs_; ///< by hash of ToJack: no second copy of the texts
    bool built_ = false;
};

} // namespace mirovane
