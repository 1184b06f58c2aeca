#include "cli/datafile/DatafileRepair.h"

#include "cli/base/Datafiles.h"
#include "platform/files/KeptCopy.h"

namespace mirovane {

namespace {

/// The rule works on a list of its own; the document is changed by its operations, which keep its index
/// right.
Datafile::RecordList copyOf(const CMirovaneDoc& document) {
    Datafile::RecordList records;
    records.reserve(document.size());
    for (std::size_t place = 0; place < document.size(); ++place)
        records.push_back(std::make_unique<CHardware>(document.at(place)));
    return records;
}

std::vector<TwinRenumbering> mendTwins(CMirovaneDoc& document) {
    Datafile::RecordList mended = copyOf(document);
    auto renumbered = renumberTwins(mended);
    for (std::size_t place = 0; place < mended.size() && !renumbered.empty(); ++place) {
        const std::int32_t recID = mended[place]->RecID;
        if (recID != document.at(place).RecID)
            document.editByUser(document.at(place), [recID](CHardware& twin) { twin.RecID = recID; });
    }
    return renumbered;
}

} // namespace

DatafileRepair repairDatafile(COutput& out, const std::string& path) {
    DatafileRepair repair;
    CKeptCopy copy;
    const LinkedEdit mend = [&](CMirovaneDoc& document, CDatafileLink& link) -> std::optional<EditRefusal> {
        repair.renumbered = mendTwins(document);
        repair.strayBytes = link.strayBytes();
        if (repair.nothingDone())
            return EditRefusal{"", ExitStatus::Done};
        if (const auto error = copy.make(path, beforeRepair))
            return EditRefusal{error->sentence, ExitStatus::FileFailed};
        link.strayBytesKept();
        return std::nullopt;
    };
    repair.status = editDatafile(out, path, "Repair the datafile", mend);
    if (repair.status != ExitStatus::Done || repair.nothingDone())
        return repair;
    copy.keep();
    repair.copy = copy.path();
    return repair;
}

} // namespace mirovane
