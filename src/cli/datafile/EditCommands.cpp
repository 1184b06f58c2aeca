#include "cli/base/ChosenDevices.h"
#include "cli/datafile/DatafileCommands.h"
#include "model/records/FieldNames.h"

#include <vector>

namespace mirovane {

namespace {

struct Assignment {
    const RecordField* field = nullptr;
    std::string value;
};

Result<std::vector<Assignment>, UsageError> assignments(std::span<const std::string> words) {
    std::vector<Assignment> list;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos)
            return UsageError{"\"" + word.substr(0, 60) +
                              "\" is not a FIELD=VALUE pair: write it as Name=pc-12"};
        const std::string name = word.substr(0, equals);
        const RecordField* field = findRecordField(name);
        if (!field)
            return UsageError{"unknown field \"" + name.substr(0, 60) + "\": the fields are " +
                              settableFieldNames()};
        list.push_back({field, word.substr(equals + 1)});
    }
    return list;
}

/// All or nothing: the sentence of the first that does not fit.
std::optional<std::string> apply(CHardware& device, const std::vector<Assignment>& list) {
    for (const Assignment& assignment : list)
        if (auto refusal = setFieldValue(device, *assignment.field, assignment.value))
            return refusal;
    return std::nullopt;
}

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
    const ExitStatus status =
        editDatafile(context.out, path, [](CMirovaneDoc&) { return std::optional<EditRefusal>(); });
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

constexpr std::string_view fieldDetails =
    "Fields: Type, State, Position, Name, IPAddress, MACAddress, Username, ToJack, Comment, SlashText,\n"
    "BackslashText, HorzText, VertText, SlashDraw, BackslashDraw, HorzDraw, VertDraw, ReminderOn,\n"
    "ReminderDate, ToDo, Priority.\n"
    "Values: Position=100,200  State=On  SlashDraw=1  ReminderDate=\"2026-11-22 14:30\" (empty: none)\n";

ExitStatus runAdd(CommandContext& context) {
    const auto name = context.arguments.value("--type");
    if (!name)
        return usageError(context, "option --type is missing: say which type the device is");
    const auto type = typeArgument(*name);
    if (!type)
        return usageError(context, type.error().sentence);
    const auto& words = context.arguments.positionals;
    const auto list = assignments(std::span(words).subspan(1));
    if (!list)
        return usageError(context, list.error().sentence);
    for (const Assignment& assignment : list.value())
        if (assignment.field->kind == FieldKind::Type)
            return usageError(context, "field Type: --type says it already");
    const std::int32_t code =
        type.value() + (context.arguments.has("--misc") ? DeviceType::discoveredOffset : 0);
    CHardware trial;
    trial.Type = code;
    if (const auto refusal = apply(trial, list.value()))
        return usageError(context, *refusal);
    std::int32_t recID = 0;
    const ExitStatus status =
        editDatafile(context.out, words[0], [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            const CHardware* device =
                doc.addDevice(code, [&](CHardware& fresh) { static_cast<void>(apply(fresh, list.value())); });
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

ExitStatus runSet(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1, 1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const auto list = assignments(std::span(words).subspan(2));
    if (!list)
        return usageError(context, list.error().sentence);
    const ExitStatus status =
        editDatafile(context.out, words[0], [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            const auto chosen = chosenDevices(doc, recIDs.value(), "cannot change a device", words[0]);
            if (!chosen)
                return chosen.error();
            const CHardware& device = *chosen.value().front();
            CHardware changed = device;
            if (const auto refusal = apply(changed, list.value()))
                return EditRefusal{*refusal, ExitStatus::Usage};
            doc.editByUser(device, [&](CHardware& record) { record = changed; });
            return std::nullopt;
        });
    if (status == ExitStatus::Done)
        printRecIDs(context.out, recIDs.value());
    return status;
}

} // namespace

constinit const Command setCommand{
    .name = "set",
    .help = "change fields of a device",
    .usage = "FILE RECID FIELD=VALUE...",
    .least = 3,
    .most = anyNumber,
    .details = fieldDetails,
    .run = runSet,
};

namespace {

ExitStatus runDelete(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const ExitStatus status =
        editDatafile(context.out, words[0], [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
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
