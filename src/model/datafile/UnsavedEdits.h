#pragma once

#include "model/Document.h"
#include "model/datafile/EditsFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace mirovane {

/// Keeps the edits that are in no datafile yet in a small file of this user's, so that a kill, a power cut or
/// a share that stays away loses none of them: whoever opens the datafile next has them put on top of it. An
/// edit costs an append and a flush of the records that it touched. Main thread; the references outlive it.
class CUnsavedEdits final : private DocumentObserver {
public:
    /// Keeps nothing with an empty `folder`.
    CUnsavedEdits(CMirovaneDoc& document, CMessageLog& log, CFileCalls& calls, std::string folder);
    ~CUnsavedEdits() override;
    CUnsavedEdits(const CUnsavedEdits&) = delete;
    CUnsavedEdits& operator=(const CUnsavedEdits&) = delete;

    /// The document holds what was just read from the datafile at `path`. Edits that an earlier program could
    /// not save are put on top, which the log tells; they stay on disk until keep() finds them saved. Those
    /// that it did save before it died are not.
    void takeDatafile(const std::string& path);

    /// After an edit and after every save: brings the file up to date, and removes it when everything is
    /// saved. `path` is where the document is saved by now.
    void keep(const std::string& path);

    /// Everything that is not saved is on disk here.
    bool allKept() const { return file_.enabled() && !failed_; }

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void recordRemoved(const CHardware& record) override;
    void documentReplaced() override;

    void putOnTop(const std::vector<KeptEdit>& edits);
    bool isEdited(const CHardware& record) const;
    KeptEdit editOf(const CHardware& record) const;
    void allowForSave(const CHardware& record, KeptEdit& edit) const;
    std::string removalsSince();
    std::int32_t followerOf(const CHardware& device) const;
    std::string changesSince();
    std::string everything();
    void forget();
    std::uint32_t numberOf(const CHardware& record);

    CMirovaneDoc& document_;
    CMessageLog& log_;
    CEditsFile file_;
    std::unordered_map<const CHardware*, std::uint32_t> numbers_; ///< of the file's entries
    std::unordered_set<const CHardware*> touched_; ///< since the file was last brought up to date
    std::size_t removalsWritten_ = 0;              ///< of the journal's
    std::size_t removalsSinceWritten_ = 0;         ///< of those since the save under way began
    std::uint64_t arrivals_ = 0;                   ///< of the document's records when the file was written
    std::string withdrawals_;                      ///< of added records that went again
    std::uint32_t nextNumber_ = 1;
    bool stale_ = true;   ///< the file must be written as a whole: the records are other ones
    bool failed_ = false; ///< it could not be written; the log has told
};

} // namespace mirovane
