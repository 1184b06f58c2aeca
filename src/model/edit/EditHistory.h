#pragma once

#include "model/Document.h"
#include "model/edit/DeviceNumbers.h"
#include "model/edit/EditStep.h"
#include "model/edit/Reversal.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mirovane {

/// The user's latest edits, each as a step: the images are taken while the edit is made, from what the
/// document tells. A step that is undone goes to the other end of a second row, from which it is redone. Both
/// rows survive reloads and merges; a device that a merge gave another number is followed. Costs two copies
/// of every record that a step touches. Main thread.
class CEditHistory final : private DocumentObserver {
public:
    enum class Way { Undo, Redo };

    static constexpr std::size_t mostSteps = 200;

    /// The oldest steps are dropped for newer ones; the newest stays, however large it is.
    static constexpr std::size_t mostBytes = std::size_t{64} * 1024 * 1024;

    /// The document outlives the history.
    explicit CEditHistory(CMirovaneDoc& document);
    ~CEditHistory() override;
    CEditHistory(const CEditHistory&) = delete;
    CEditHistory& operator=(const CEditHistory&) = delete;

    /// From begin() to end() every change to the document belongs to one step. False: the document is as it
    /// was. What follows from an edit by itself (dates, owners, stamps of text files) changes the document,
    /// but is not kept in a step.
    void begin(EditName name);
    bool end();

    /// Takes the latest step of this row back, or makes it again. There must be one. `changed` says whether
    /// that did anything.
    struct Reversed {
        bool changed = false;
        std::vector<std::string> lines; ///< for the log
    };
    Reversed reverse(Way way);

    /// What is undone, or redone, next; null when nothing.
    const EditStep* next(Way way) const;

    /// The oldest first.
    const std::deque<EditStep>& steps() const { return done_; }

    /// Another datafile: nothing of the one before can be undone.
    void clear();

private:
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void orderChanged() override { changed_ = true; }
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override;

    RecordEdit& editOf(const CHardware& record);
    std::optional<EditStep> finished(const ReversalResult& reversal = {});
    void giveTickets(std::vector<RecordEdit>& edits, const ReversalResult& reversal);
    void push(std::deque<EditStep>& row, EditStep step);
    EditStep takeLast(std::deque<EditStep>& row);
    void dropOldest();

    CMirovaneDoc& document_;
    std::deque<EditStep> done_;
    std::deque<EditStep> undone_; ///< what is redone next comes last
    std::size_t bytes_ = 0;
    std::optional<EditStep> open_;
    bool changed_ = false;                                     ///< anything, in the open step
    std::unordered_map<const CHardware*, std::size_t> places_; ///< in the open step, of records in the list
    CDeviceNumbers numbers_;
    std::vector<std::pair<std::int32_t, std::int32_t>> renumbered_; ///< by the merge that is under way
};

} // namespace mirovane
