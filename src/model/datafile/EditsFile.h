#pragma once

#include "model/MessageLog.h"
#include "model/datafile/KeptEdits.h"
#include "platform/files/FileCalls.h"
#include "platform/files/OpenFile.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// The file of one datafile's unsaved edits on disk. There is one for a datafile, and one more for each
/// further program of the user that has edits for it at the same time; a lock tells whose program is alive.
/// What a program left that has ended is taken over by the next one. Main thread; the references outlive it.
class CEditsFile {
public:
    /// Without a `folder` there is never a file.
    CEditsFile(CMessageLog& log, CFileCalls& calls, std::string folder)
        : log_(log), calls_(calls), folder_(std::move(folder)) {}

    bool enabled() const { return !folder_.empty() && !datafile_.empty(); }
    const std::string& folder() const { return folder_; }
    const std::string& datafile() const { return datafile_; }

    /// From now on for this datafile; a file that is open stays for the next program.
    void setDatafile(const std::string& datafile);

    /// What ended programs left for it. Their files stay until write() or discard(). A damaged one never
    /// blocks: what can be read of it counts, and the log says where it is kept.
    std::vector<KeptEdit> takeLeftovers();

    bool open() const { return static_cast<bool>(file_); }

    /// Several times as large as when it was last written as a whole.
    bool grown() const;

    /// All that is to be kept, whole and durable; false, and errno, when that failed: the file before is
    /// there.
    bool write(const std::string& content);

    /// More of it. After a failure the file must be written as a whole.
    bool append(std::string_view entries);

    /// Nothing is to be kept.
    void discard();

    /// The file stays for the next program.
    void letGo();

private:
    struct Left {
        std::string path;
        COpenFile file;
    };

    std::string slot(int number) const;
    bool takeOne(const std::string& path, std::vector<KeptEdit>& edits);
    bool setAside(const std::string& path);
    bool replace(const std::string& content);
    bool makeNew(const std::string& content);

    CMessageLog& log_;
    CFileCalls& calls_;
    std::string folder_;
    std::string datafile_;
    std::vector<Left> leftovers_;
    COpenFile file_;
    std::string path_; ///< of the open file
    std::size_t size_ = 0;
    std::size_t sizeAtFirst_ = 0;
};

} // namespace mirovane
