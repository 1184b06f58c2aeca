#include "cli/doctor/Check.h"
#include "model/records/SpecialRecords.h"
#include "model/records/Text.h"
#include "platform/files/FilePaths.h"
#include "platform/files/PosixFiles.h"

#include <array>
#include <ctime>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace mirovane {

namespace {

/// Clocks that are set by the network differ by less.
constexpr std::chrono::minutes mostAhead{2};

struct FileSystemName {
    long magic;
    std::string_view name;
};

constexpr std::array<FileSystemName, 8> fileSystems{{
    {NFS_SUPER_MAGIC, "NFS"},
    {0xFF534D42, "CIFS"},
    {0xFE534D42, "SMB"},
    {EXT4_SUPER_MAGIC, "ext4"},
    {XFS_SUPER_MAGIC, "XFS"},
    {BTRFS_SUPER_MAGIC, "Btrfs"},
    {TMPFS_MAGIC, "memory"},
    {FUSE_SUPER_MAGIC, "FUSE"},
}};

std::string fileSystemOf(const std::string& folder) {
    struct statfs status {};
    if (statfs(folder.c_str(), &status) != 0)
        return "a file system that does not say what it is";
    for (const FileSystemName& known : fileSystems)
        if (known.magic == static_cast<long>(status.f_type))
            return std::string(known.name);
    return "another file system";
}

CheckResult checkDatafile(const DoctorPlaces& places) {
    const auto& content = places.content;
    if (!content)
        return CheckResult::fails("cannot read " + places.datafile + " (" + content.error() + ")",
                                  "mirovanectl check " + places.datafile);
    if (access(places.datafile.c_str(), W_OK) != 0)
        return CheckResult::fails(places.datafile + " can be read and not written",
                                  "sudo chmod g+w " + places.datafile + " && sudo chgrp YOUR-GROUP " +
                                      places.datafile);
    return CheckResult::works(std::to_string(content.value().records.size()) + " records, can be written");
}

/// A file beside the datafile, made, locked, replaced and removed as a save does it.
CheckResult checkFolder(const DoctorPlaces& places) {
    const std::string folder = folderOf(places.datafile);
    const std::string probe = folder + "/.mirovane-doctor-" + std::to_string(getpid());
    struct Remove {
        const std::string& path;
        ~Remove() { unlink(path.c_str()); }
    } const remove{probe};
    const std::string where = folder + " (" + fileSystemOf(folder) + ")";
    const std::string mend = "sudo chmod g+ws " + folder + " && sudo chgrp YOUR-GROUP " + folder;

    CPosixFiles files;
    auto held = files.lock(probe, FileAccess::Write, lockPatience);
    if (!held)
        return CheckResult::fails(where + " takes no new file: " + held.error().sentence, mend);
    for (int save = 1; save <= 2; ++save) // the second one renames over the first
        if (const auto saved = held.value()->replace("doctor"); !saved)
            return CheckResult::fails(where + " takes no new name: " + saved.error().sentence, mend);
    CPosixFiles others;
    if (others.lock(probe, FileAccess::Write, std::chrono::milliseconds(0)))
        return CheckResult::fails(
            where + " knows no locks: two stations may save at once",
            "mount it with locks: without nolock (NFS), nobrl (CIFS) among its options");
    return CheckResult::works(where + " takes new files, renames and locks them");
}

std::string timeText(std::time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%F %T", &local);
    return text.data();
}

/// Who signs from the future looks alive for as long as his clock is fast.
CheckResult checkClock(const DoctorPlaces& places) {
    const std::string mend = "timedatectl set-ntp true, here and there";
    const auto& content = places.content;
    const auto late = std::chrono::system_clock::to_time_t(places.now + mostAhead);
    if (content)
        for (const auto& record : content.value().records) {
            if (record->Type != SpecialType::LiveStatOwnerRecord || record->Modified == 0)
                continue;
            const OwnerValues owner = ownerFromRecord(*record);
            const std::string who = displayText(owner.station.computerName);
            if (owner.modified > late)
                return CheckResult::fails("the clock of " + who +
                                              " is ahead of this one: it gave its last "
                                              "sign of life at " +
                                              timeText(owner.modified),
                                          mend);
            if (owner.on)
                return CheckResult::works("Live Stat runs at " + who + ", last sign of life " +
                                          timeText(owner.modified));
        }
    const auto status = CPosixFiles().status(places.datafile);
    constexpr std::int64_t nanosecondsPer = 1'000'000'000;
    if (status && status.value().modifiedNs / nanosecondsPer > late)
        return CheckResult::fails("the clock of the share is ahead of this one: the datafile is from " +
                                      timeText(status.value().modifiedNs / nanosecondsPer),
                                  mend);
    return CheckResult::works("nobody signs from the future");
}

bool withDatafile(const DoctorPlaces& places) {
    return places.hasDatafile();
}

constexpr std::string_view shareHangs = "its share hangs: umount -l its mount point, then mount it again";

constexpr std::array datafileTable{
    Check{"datafile", checkDatafile, withDatafile, shareHangs},
    Check{"folder", checkFolder, withDatafile, shareHangs},
    Check{"clock", checkClock, withDatafile, shareHangs},
};

} // namespace

std::span<const Check> datafileChecks() {
    return datafileTable;
}

} // namespace mirovane
