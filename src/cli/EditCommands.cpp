#include "cli/Commands.h"
#include "cli/Datafiles.h"
#include "model/FieldNames.h"

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
            return UsageError{"\"" + word.substr(0, 60) + "\" is no FIELD=VALUE: write it as Name=pc-12"};
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
    for (const Assignment& assignment : list) {
        if (auto refusal = setFieldValue(device, *assignment.field, assignment.value))
            return refusal;
    }
    return std::nullopt;
}

EditRefusal noDevice(std::int32_t recID) {
    return {"no device has the RecID " + std::to_string(recID) + ": nothing was changed", ExitStatus::No};
}

} // namespace

void printRecIDs(Output& out, const std::vector<std::int32_t>& recIDs) {
    for (const std::int32_t recID : recIDs)
        out.printLine(std::to_string(recID));
}

ExitStatus runNew(CommandContext& context) {
    return createDatafile(context.out, context.arguments.positionals[0], context.arguments.has("--force"));
}

ExitStatus runUpgrade(CommandContext& context) {
    std::int32_t before = 0;
    const ExitStatus status =
        editDatafile(context.out, context.arguments.positionals[0], [&](CMirovaneDoc& doc) {
            before = doc.fileVersion();
            return std::optional<EditRefusal>();
        });
    if (status == ExitStatus::Done)
        context.out.printLine("version " + std::to_string(before) + " to " +
                              std::to_string(Datafile::currentVersion));
    return status;
}

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
    for (const Assignment& assignment : list.value()) {
        if (assignment.field->kind == FieldKind::Type)
            return usageError(context, "field Type: --type says it already");
    }
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

ExitStatus runSet(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1, 1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const auto list = assignments(std::span(words).subspan(2));
    if (!list)
        return usageError(context, list.error().sentence);
    const std::int32_t recID = recIDs.value().front();
    const ExitStatus status =
        editDatafile(context.out, words[0], [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            const CHardware* device = doc.findDevice(recID);
            if (!device)
                return noDevice(recID);
            CHardware changed = *device;
            if (const auto refusal = apply(changed, list.value()))
                return EditRefusal{*refusal, ExitStatus::Usage};
            doc.editByUser(*device, [&](CHardware& record) { record = changed; });
            return std::nullopt;
        });
    if (status == ExitStatus::Done)
        printRecIDs(context.out, {recID});
    return status;
}

ExitStatus runDelete(CommandContext& context) {
    const auto& words = context.arguments.positionals;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1));
    if (!recIDs)
        return usageError(context, recIDs.error().sentence);
    const ExitStatus status =
        editDatafile(context.out, words[0], [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
            for (const std::int32_t recID : recIDs.value()) {
                if (!doc.findDevice(recID))
                    return noDevice(recID);
            }
            doc.removeDevices(recIDs.value());
            return std::nullopt;
        });
    if (status == ExitStatus::Done)
        printRecIDs(context.out, recIDs.value());
    return status;
}

} // namespace mirovane
