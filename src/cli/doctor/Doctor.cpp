#include "cli/doctor/Doctor.h"

#include "platform/AbandonableCalls.h"
#include "platform/files/PosixFiles.h"

#include <utility>

namespace mirovane {

namespace {

/// One call of a place at a time: who comes while one hangs is refused at once.
constexpr CAbandonableCalls::Limits limits{1, 100, std::chrono::milliseconds(0)};

Result<Datafile::Content, std::string> readContent(const std::string& path) {
    CPosixFiles files;
    auto file = files.lock(path, FileAccess::Read, lockPatience);
    if (!file)
        return file.error().sentence;
    auto bytes = file.value()->read();
    if (!bytes)
        return bytes.error().sentence;
    auto content = Datafile::decode(bytes.value());
    if (!content)
        return content.error().sentence;
    return std::move(content.value());
}

/// A check that was left behind goes on with what it has; nobody changes it any more.
template <typename Answer>
std::optional<Answer> bounded(CAbandonableCalls& calls, const std::string& place,
                              std::function<Answer()> question, std::chrono::milliseconds patience) {
    const auto answer = std::make_shared<std::optional<Answer>>();
    const auto end = calls.run(
        place, [answer, question = std::move(question)] { answer->emplace(question()); }, patience);
    return end == CAbandonableCalls::End::Done ? std::move(*answer) : std::nullopt;
}

} // namespace

std::vector<Finding> examine(const std::shared_ptr<DoctorPlaces>& places,
                             std::chrono::milliseconds patience) {
    CAbandonableCalls calls(limits);
    const std::string datafile = "datafile";
    if (places->hasDatafile())
        if (auto content = bounded<Result<Datafile::Content, std::string>>(
                calls, datafile, [path = places->datafile] { return readContent(path); }, patience))
            places->content = std::move(*content);
    std::vector<Finding> findings;
    for (const auto checks : {networkChecks(), datafileChecks(), computerChecks()})
        for (const Check& check : checks) {
            if (!check.applies(*places))
                continue;
            const std::string place =
                checks.data() == datafileChecks().data() ? datafile : std::string(check.name);
            const std::shared_ptr<const DoctorPlaces> seen = places;
            const auto result = bounded<CheckResult>(
                calls, place, [run = check.run, seen] { return run(*seen); }, patience);
            findings.push_back(
                {check.name, result ? *result
                                    : CheckResult::fails("no answer within " +
                                                             std::to_string(patience.count() / 1000) + " s",
                                                         std::string(check.hangs))});
        }
    return findings;
}

} // namespace mirovane
