// Any bytes as a datafile: an error that points into the file, or content that is written and read again as
// it was.

#include "model/RecordIndex.h"
#include "model/format/Datafile.h"
#include "model/records/Text.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>

namespace {

using namespace mirovane;

void require(bool ok, const char* what) {
    if (ok)
        return;
    std::cerr << "DatafileFuzz: " << what << '\n';
    std::abort();
}

void checkError(const Datafile::Error& error, std::size_t size) {
    require(error.offset <= size, "an error lies behind the end of the file");
    require(!error.sentence.empty(), "an error has no sentence");
}

void checkContent(const Datafile::Content& content) {
    const std::string written = Datafile::encode(content.records);
    CRecordIndex index;
    index.rebuild(content.records);
    for (const auto& record : content.records) {
        require(!record->isDevice() || index.device(record->RecID).has_value(), "a device is not found");
        require(isValidUtf8(displayText(record->Name)), "a text cannot be shown");
    }
    // An older layout may have had its version where the current one has something else.
    if (content.fileVersion != Datafile::currentVersion)
        return;
    const auto again = Datafile::decode(written);
    require(again.ok(), "what was read cannot be written and read again");
    require(Datafile::encode(again.value().records) == written, "written again, it is different");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto content = Datafile::decode(bytes);
    if (content)
        checkContent(content.value());
    else
        checkError(content.error(), size);
    return 0;
}
