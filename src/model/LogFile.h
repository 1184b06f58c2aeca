#pragma once

#include "model/MessageLog.h"
#include "platform/files/FileCalls.h"

#include <cstdint>
#include <string>

namespace mirovane {

/// The lasting lines of the message log on disk, for whoever misses a value weeks later: a megabyte, then the
/// file moves aside, and of those moved aside the three latest are kept. All programs of a user write one
/// file; each line is written whole. Main thread; the log and the calls outlive it.
class CLogFile final : public LogListener {
public:
    static constexpr std::int64_t fullSize = 1'000'000;
    static constexpr int keptFiles = 4; ///< with the one that is written

    /// Writes nothing with an empty `folder`, which is made when there is a line for it.
    CLogFile(CMessageLog& log, CFileCalls& calls, std::string folder);
    ~CLogFile() override;
    CLogFile(const CLogFile&) = delete;
    CLogFile& operator=(const CLogFile&) = delete;

    /// Where the lines of a station with this state folder are.
    static std::string pathIn(const std::string& folder) { return folder + "/messages.log"; }

private:
    void lineLogged(const LogLine& line) override;
    void linesSettle() override;
    bool write(const std::string& text);
    bool moveAside(int fd);
    void tellFailure(int code);

    CMessageLog& log_;
    CFileCalls& calls_;
    std::string folder_;
    bool unflushed_ = false;
    int toldCode_ = 0; ///< of the failure that the log tells about
};

} // namespace mirovane
