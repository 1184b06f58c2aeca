#include "ui/widgets/SaveFailure.h"

namespace mirovane {

namespace {

std::string remedy(const FileError& error) {
    switch (error.kind) {
    case FileError::Kind::NotFound:
        return "The folder is gone or the network share is not connected. Bring it back, or save elsewhere "
               "with File, Save As.";
    case FileError::Kind::Denied:
        return "You may not write there. Save elsewhere with File, Save As, or have the file's permissions "
               "changed.";
    case FileError::Kind::Locked:
        return "Another station is reading or writing it. Try again in a moment.";
    case FileError::Kind::NoSpace:
        return "Make room on the disk and try again, or save elsewhere with File, Save As.";
    case FileError::Kind::Changed:
        return "Your changes are kept here, and saved as soon as what another station saved there can be "
               "read. Save a copy elsewhere with File, Save As, before you leave.";
    case FileError::Kind::TooLarge:
        return "Remove devices, or divide the floor into two datafiles.";
    case FileError::Kind::NotAnswering:
        return "Your changes are saved as soon as the share answers again. Or save elsewhere with File, Save "
               "As.";
    case FileError::Kind::Other:
        break;
    }
    return "Try again, or save elsewhere with File, Save As.";
}

} // namespace

std::string saveFailureText(const FileError& error) {
    return "The datafile could not be saved.\n\n" + error.sentence + "\n\n" + remedy(error);
}

} // namespace mirovane
