#include "cli/base/ChosenDevices.h"
#include "cli/datafile/DatafileCommands.h"
#include "cli/datafile/FieldArguments.h"
#include "model/properties/Duplicates.h"
#include "model/properties/PropertiesGroup.h"
#include "model/records/Text.h"

#include <algorithm>
#include <cctype>

namespace mirovane {

namespace {

constexpr std::array setOptions{
    OptionDefinition{
        "--where", 1, "CONDITION",
        "the devices that fit, such as Type=Printer or 'Name~^prn-'; may be given several times"},
    OptionDefinition{"--no-duplicate-check", 0, "", "also where another device has the same name or address"},
    OptionDefinition{"--dry-run", 0, "", "print what would change and write nothing"},
};

/// What the command line asks for.
struct SetRequest {
    std::string path;
    std::vector<std::int32_t> recIDs; ///< empty: whoever fits the conditions
    CDeviceConditions conditions;
    PropertiesEdit edit;
    bool duplicateCheck = true;
};

using Devices = std::vector<const CHardware*>;

constexpr std::string_view cannotChange = "cannot change a device";

bool beginsWithDigit(const std::string& word) {
    return !word.empty() && std::isdigit(static_cast<unsigned char>(word.front())) != 0;
}

Result<SetRequest, UsageError> setRequest(const Arguments& arguments) {
    const std::span words(arguments.positionals);
    const auto behind = std::find_if_not(words.begin() + 1, words.end(), beginsWithDigit);
    const auto ids = recordIDArguments({words.begin() + 1, behind});
    if (!ids)
        return ids.error();
    const auto where = arguments.values("--where");
    auto conditions = CDeviceConditions::of(where);
    if (!conditions)
        return conditions.error();
    auto edit = assignmentArguments({behind, words.end()});
    if (!edit)
        return edit.error();
    if (edit.value().empty())
        return UsageError{"too few arguments: say what to change, such as Name=pc-12"};
    if (ids.value().empty() == where.empty())
        return UsageError{where.empty() ? "name the devices by RECID, or say with --where which are meant"
                                        : "name the devices by RECID or with --where, not both"};
    return SetRequest{words.front(), ids.value(), std::move(conditions.value()), std::move(edit.value()),
                      !arguments.has("--no-duplicate-check")};
}

Result<Devices, EditRefusal> devicesMeant(const CMirovaneDoc& doc, const SetRequest& request) {
    if (!request.recIDs.empty())
        return chosenDevices(doc, request.recIDs, cannotChange, request.path);
    Devices devices;
    for (const auto& record : doc.records())
        if (record->isDevice() && request.conditions.fits(*record))
            devices.push_back(record.get());
    if (devices.empty())
        return EditRefusal{std::string(cannotChange) + ": no device fits", ExitStatus::No};
    return devices;
}

/// A text that the device would lose with its next edit is not taken.
std::optional<EditRefusal> refusalOf(const CHardware& device, const PropertiesEdit& edit) {
    const auto unused = unusedTexts(propertiesGroupOf(device.Type));
    for (const auto& assignment : edit.assignments)
        if (std::ranges::find(unused, assignment.field->name) != unused.end())
            return EditRefusal{std::string(cannotChange) + ": a " + std::string(typeName(device.Type)) +
                                   " has no " + std::string(assignment.field->name) + " (RecID " +
                                   std::to_string(device.RecID) + ")",
                               ExitStatus::Usage};
    if (const auto changed = changedBy(edit, device); !changed)
        return EditRefusal{changed.error(), ExitStatus::Usage};
    return std::nullopt;
}

/// Of a single device, like in the windows: who gives several devices one name wants it so.
std::optional<EditRefusal> duplicateOf(const CMirovaneDoc& doc, const CHardware& device,
                                       const PropertiesEdit& edit) {
    constexpr std::array<std::string_view, 4> own{"Name", "IPAddress", "MACAddress", "ToJack"};
    if (std::ranges::none_of(own, [&edit](std::string_view field) { return edit.valueOf(field); }))
        return std::nullopt;
    const std::array selected{doc.keyOf(device)};
    const auto found = findDuplicate(doc, changedBy(edit, device).value(), selected);
    if (!found)
        return std::nullopt;
    const CHardware& other = *doc.findDevice(found->other);
    std::string sentence = std::string(cannotChange) + ": " + describeDevice(other) + " (RecID " +
                           std::to_string(other.RecID) + ") has the same";
    for (const std::string_view label : found->labels)
        sentence.append(" \"").append(label).append("\"");
    return EditRefusal{sentence + "; --no-duplicate-check changes it all the same", ExitStatus::No};
}

/// The devices that are to be changed, or why none is.
Result<Devices, EditRefusal> devicesToChange(const CMirovaneDoc& doc, const SetRequest& request) {
    auto devices = devicesMeant(doc, request);
    if (!devices)
        return devices.error();
    for (const CHardware* device : devices.value())
        if (const auto refusal = refusalOf(*device, request.edit))
            return *refusal;
    if (request.duplicateCheck && devices.value().size() == 1)
        if (const auto refusal = duplicateOf(doc, *devices.value().front(), request.edit))
            return *refusal;
    return devices;
}

/// One device is edited as its window would.
PropertiesEdit editOf(const SetRequest& request, const Devices& devices) {
    PropertiesEdit edit = request.edit;
    edit.alone = devices.size() == 1;
    return edit;
}

void printChanges(COutput& out, const CHardware& device, const CHardware& changed) {
    for (const RecordField& field : recordFields())
        if (!sameField(device, changed, field))
            out.printLine(std::to_string(device.RecID) + " " + std::string(field.name) + ": \"" +
                          printable(fieldValue(device, field)) + "\" -> \"" +
                          printable(fieldValue(changed, field)) + "\"");
}

ExitStatus tryOut(COutput& out, const SetRequest& request) {
    ExitStatus answer = ExitStatus::Done;
    const ExitStatus read = viewDatafile(out, request.path, [&](const CMirovaneDoc& doc) {
        const auto devices = devicesToChange(doc, request);
        if (!devices) {
            out.diagnose(devices.error().sentence);
            answer = devices.error().status;
            return;
        }
        const PropertiesEdit edit = editOf(request, devices.value());
        for (const CHardware* device : devices.value())
            printChanges(out, *device, changedBy(edit, *device).value());
    });
    return read == ExitStatus::Done ? answer : read;
}

ExitStatus change(COutput& out, const SetRequest& request) {
    std::vector<std::int32_t> touched;
    const ExitStatus status = editDatafile(out, request.path, "Change devices",
                                           [&](CMirovaneDoc& doc) -> std::optional<EditRefusal> {
                                               const auto devices = devicesToChange(doc, request);
                                               if (!devices)
                                                   return devices.error();
                                               touched.clear();
                                               std::vector<DeviceKey> keys;
                                               for (const CHardware* device : devices.value()) {
                                                   touched.push_back(device->RecID);
                                                   keys.push_back(doc.keyOf(*device));
                                               }
                                               applyProperties(doc, keys, editOf(request, devices.value()));
                                               return std::nullopt;
                                           });
    if (status == ExitStatus::Done)
        printRecIDs(out, touched);
    return status;
}

ExitStatus runSet(CommandContext& context) {
    const auto request = setRequest(context.arguments);
    if (!request)
        return usageError(context, request.error().sentence);
    return context.arguments.has("--dry-run") ? tryOut(context.out, request.value())
                                              : change(context.out, request.value());
}

constexpr std::string_view setRules =
    "The rules are those of the Properties window: a jack and a location marker have no name or address, and "
    "a\n"
    "single device does not get a value that another one has. With --dry-run a line for each change: RECID\n"
    "FIELD: \"old\" -> \"new\".\n"
    "Conditions compare with any stored field, a type by its name; letters may be upper or lower case.\n";

constexpr auto setDetails = [] {
    std::array<char, setRules.size() + fieldDetails.size()> text{};
    std::ranges::copy(fieldDetails, std::ranges::copy(setRules, text.begin()).out);
    return text;
}();

} // namespace

constinit const Command setCommand{
    .name = "set",
    .help = "change fields of devices",
    .usage = "FILE RECID... FIELD=VALUE...",
    .least = 2,
    .most = anyNumber,
    .options = setOptions,
    .details = {setDetails.data(), setDetails.size()},
    .run = runSet,
};

} // namespace mirovane
