#pragma once

#include "model/datafile/DatafileLink.h"
#include "platform/files/PosixFiles.h"

#include <string>

namespace mirovane::test {

/// Another user's document on a datafile, without a station around it.
class Colleague {
public:
    explicit Colleague(const Clock& clock) : log_(clock), doc(clock, log_, {"other", "someone"}) {}

    /// False when it cannot be read.
    bool open(const std::string& path) { return !link.open(path); }
    bool save() { return link.save().saved(); }

private:
    CPosixFiles files_;
    CMessageLog log_;

public:
    CMirovaneDoc doc;
    CDatafileLink link{doc, files_, log_};
};

} // namespace mirovane::test
