#include "model/datafile/DatafileOrders.h"

#include "platform/files/FilePaths.h"
#include "platform/files/KeptCopy.h"

#include <utility>

namespace mirovane::DatafileOrders {

namespace {

Datafile::Error cannotRead(const FileError& error) {
    return {Datafile::Error::Kind::CannotRead, 0, 0, error.sentence};
}

FileError vanished(const std::string& path) {
    return {FileError::Kind::NotFound, 0,
            "cannot write " + path +
                ": the datafile is no longer there. Where its share is not connected, a new one would be in "
                "the wrong place"};
}

ReadAnswer contentsOf(LockedFile& file) {
    const auto bytes = file.read();
    if (!bytes)
        return cannotRead(bytes.error());
    auto content = Datafile::decode(bytes.value());
    if (!content)
        return content.error();
    return Contents{std::move(content.value()), file.identity(), true};
}

WriteAnswer replace(LockedFile& file, const Write& order) {
    Written written;
    if (order.keepsOld) {
        CKeptCopy copy;
        if (auto error = copy.make(order.path, beforeRepair))
            return std::move(*error);
        copy.keep();
        written.copy = copy.path();
    }
    auto replaced = file.replace(order.bytes);
    if (!replaced)
        return replaced.error();
    written.identity = replaced.value();
    return written;
}

} // namespace

ReadAnswer carryOut(Files& files, const Read& order) {
    const auto locked = files.lock(order.path, FileAccess::Read, order.patience);
    if (!locked)
        return cannotRead(locked.error());
    auto answer = contentsOf(*locked.value());
    if (answer)
        answer.value().writable = mayBeWritten(order.path);
    return answer;
}

WriteAnswer carryOut(Files& files, Write order) {
    std::shared_ptr<LockedFile> file = std::move(order.locked);
    if (file)
        return replace(*file, order);
    auto locked = files.lock(order.path, FileAccess::Write, order.patience);
    if (!locked)
        return locked.error();
    file = std::move(locked.value());
    if (order.mustBeThere && !file->exists())
        return vanished(order.path);
    if (file->exists() && (order.readFirst || (order.known && file->identity() != *order.known))) {
        auto read = contentsOf(*file);
        return Changed{std::move(read), std::move(file)};
    }
    return replace(*file, order);
}

} // namespace mirovane::DatafileOrders
