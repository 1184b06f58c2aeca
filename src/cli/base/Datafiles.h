#pragma once

#include "cli/base/Output.h"
#include "model/datafile/DatafileLink.h"

#include <functional>
#include <optional>
#include <string>

namespace mirovane {

/// Why a datafile could not be read, with its path.
void diagnoseUnreadable(COutput& out, const std::string& path, const Datafile::Error& error);

/// Reads a datafile as it is: no upgrade, no write. On failure says why on standard error.
std::optional<Datafile::Content> readDatafile(COutput& out, const std::string& path);

/// Why an edit will not be done, as "what: why", and with which exit status the command ends. An empty
/// sentence ends it without a word: there was nothing to change.
struct EditRefusal {
    std::string sentence;
    ExitStatus status = ExitStatus::Usage;
};

/// Changes the opened document, or refuses. Runs again, on a freshly read document, when a program that
/// respects no locks changed the file meanwhile.
using DatafileEdit = std::function<std::optional<EditRefusal>(CMirovaneDoc&)>;

/// One that concerns the file itself, too.
using LinkedEdit = std::function<std::optional<EditRefusal>(CMirovaneDoc&, CDatafileLink&)>;

/// Opens the datafile with its post-load pass, applies the edit and saves once. The file is locked from
/// before it is read until it has been saved, so that of any number of commands at once each builds on the
/// one before. When anything fails the file stays as it was and standard error says why. `name` says what the
/// edit does: "Delete devices".
ExitStatus editDatafile(COutput& out, const std::string& path, const std::string& name,
                        const DatafileEdit& edit);
ExitStatus editDatafile(COutput& out, const std::string& path, const std::string& name,
                        const LinkedEdit& edit);

/// As `editDatafile` without saving: for looking at the document as the program would show it.
ExitStatus viewDatafile(COutput& out, const std::string& path,
                        const std::function<void(const CMirovaneDoc&)>& view);

/// A new datafile at the path. Fails where there is a file already, unless `replace`.
ExitStatus createDatafile(COutput& out, const std::string& path, bool replace);

} // namespace mirovane
