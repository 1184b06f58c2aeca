#include "cli/base/ChosenDevices.h"
#include "cli/datafile/DatafileCommands.h"
#include "cli/datafile/FieldArguments.h"

#include <vector>

namespace mirovane {

namespace {

constexpr std::array newOptions{
    OptionDefinition{"--force", 0, "", "replace FILE where it exists"},
};

ExitStatus runNew(CommandContext& context) {
    return createDatafile(context.out, context.arguments.positionals[0], context.arguments.has("--force"));
}

} // namespace

constinit const Command newCommand{
    .name = "new",
    .help = "create a new datafile",
    .usage = "FILE [--force]",
    .least = 1,
    .most = 1,
    .options = newOptions,
    .run = runNew,
};

namespace {

ExitStatus runUpgrade(CommandContext& context) {
    const std::string& path = context.arguments.positionals[0];
    const auto before = readDatafile(context.out, path);
    if (!before)
        return ExitStatus::FileFailed;
    const ExitStatus status = editDatafile(context.out, path, "Upgrade",
                                           [](CMirovaneDoc&) { return std::optional<EditRefusal>(); });
    if (status == ExitStatus::Done)
        context.out.printLine("version " + std::to_string(before->fileVersion) + " to " +
                              std::to_string(Datafile::currentVersion));
    return status;
}

} // namespace

constinit const Command upgradeCommand{
    .name = "upgrade",
    .help = "save a datafile in the current layout",
    .usage = "FILE",
    .least = 1,
    .most = 1,
    .run = runUpgrade,
};

namespace {

constexpr std::array addOptions{
    OptionDefinition{"--type", 1, "NAME", "the device's type, such as Computer or \"Card Module\""},
    OptionDefinition{"--misc", 0, "", "put it into the Discovered/Misc window instead of on the floor map"},
};

ExitStatus runAdd(CommandContext& context) {
    const auto name = context.arguments.value("--type");
    if (!name)
        return usageError(context, "option --type is missing: say which type the device is");
    const auto type = typeArgument(*name);
    if (!type)
        return usageError(context, type.error().sentence);
    const auto& words = context.arguments.positionals;
    const auto edit = assignmentArguments(std::span(words).subspan(1));
    if (!edit)
        return usageError(context, edit.error().sentence);
    if (edit.value().valueOf("Type"))
        return usageError(context, "field Type: --type says it already");
    const std::int32_t code =
        type.value() + (context.arguments.has("--misc") ? DeviceType::discoveredOffset : 0);
    CHardware trial;
    trial.Type = code;
    const auto filled = changedBy(edit.value(), trial);
    if (!filled)
        return usageError(context, filled.error());
    std::int32_t recID = 0;
    const ExitStatus status = editDatafile(
        context.out, words[0], "Add a device", [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            const CHardware* device = doc.addDevice(
                code, [&](CHardware& fresh) { fresh = changedBy(edit.value(), fresh).value(); });
            if (!device)
                return EditRefusal{"cannot add a device to " + words[0] + ": the datafile is full",
                                   ExitStatus::FileFailed};
            recID = device->RecID;
            return std::nullopt;
        });
    if (status == ExitStatus::Done)
        printRecIDs(context.out, {recID});
    return status;
}

} // namespace

constinit const Command addCommand{
    .name = "add",
    .help = "add a device",
    .usage = "FILE --type NAME [--misc] [FIELD=VALUE]...",
    .least = 1,
    .most = anyNumber,
    .options = addOptions,
    .details = fieldDetails,
    .run = runAdd,
};

namespace {

ExitStatus runDelete(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const ExitStatus status = editDatafile(
        context.out, words[0], "Delete devices", [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            const auto chosen = chosenDevices(doc, recIDs.value(), "cannot delete", words[0]);
            if (!chosen)
                return chosen.error();
            std::vector<DeviceKey> keys;
            for (const CHardware* device : chosen.value())
                keys.push_back(doc.keyOf(*device));
            doc.removeDevices(keys);
            return std::nullopt;
        });
    if (status == ExitStatus::Done)
        printRecIDs(context.out, recIDs.value());
    return status;
}

} // namespace

constinit const Command deleteCommand{
    .name = "delete",
    .help = "delete devices",
    .usage = "FILE RECID...",
    .least = 2,
    .most = anyNumber,
    .run = runDelete,
};

} // namespace mirovane
