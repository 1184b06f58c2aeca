#pragma once

#include "model/Document.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// One record before and after an edit; added and removed ones have one side only.
struct RecordEdit {
    std::optional<CHardware> before;
    std::optional<CHardware> after;
};

/// What one command of the user changed, under the name that an undo of it is called by.
struct EditStep {
    std::string name; ///< "Delete 3 devices"
    std::vector<RecordEdit> records;
};

/// The user's latest edits, each as a step: the before-image is taken while the edit is made, from what the
/// document tells. Costs two copies of every record that a step touches. Main thread.
class CEditHistory final : private DocumentObserver {
public:
    static constexpr std::size_t mostSteps = 200;

    /// The document outlives the history.
    explicit CEditHistory(CMirovaneDoc& document) : document_(document) {}
    ~CEditHistory() override;
    CEditHistory(const CEditHistory&) = delete;
    CEditHistory& operator=(const CEditHistory&) = delete;

    /// From begin() to end() every change to the document belongs to one step. False: nothing changed, and no
    /// step is kept.
    void begin(std::string name);
    bool end();

    /// The oldest first.
    const std::deque<EditStep>& steps() const { return steps_; }

    /// Another datafile: nothing of the one before can be undone.
    void clear() { steps_.clear(); }

private:
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    RecordEdit& editOf(const CHardware& record);

    CMirovaneDoc& document_;
    std::deque<EditStep> steps_;
    std::optional<EditStep> open_;
    std::unordered_map<const CHardware*, std::size_t> places_; ///< in the open step, of records in the list
};

} // namespace mirovane
